#pragma once
// Which objects lie under a point of the view or inside a box, as the selection and
// line tools need them. A picture is hit where it is not transparent; restricted areas
// and route checkers are hit anywhere inside their circle.

#include <QRect>
#include <QString>
#include <QStringList>

class LayoutDocument;
class ViewGeometry;
class varnoObject;

// True when the client pixel (x, y) lies on the object as it is drawn.
bool ObjectHit(const varnoObject &object, const ViewGeometry &view, int x, int y);
// The key of the topmost object under the client pixel, or an empty string.
QString ObjectAtPoint(const LayoutDocument &doc, const ViewGeometry &view, int x, int y);
// Keys of the objects whose positions lie inside the box (layout units, edges included).
QStringList ObjectsInBox(const LayoutDocument &doc, const QRect &layoutBox);
