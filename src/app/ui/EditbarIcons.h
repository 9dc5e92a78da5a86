#pragma once
// The edit bar's button pictures, drawn at run time so they stay sharp at any scale.

#include <QIcon>

namespace EditbarIcons {
QIcon rotate(bool clockwise);
QIcon rotateHalf();
QIcon flip(bool vertical);
} // namespace EditbarIcons
