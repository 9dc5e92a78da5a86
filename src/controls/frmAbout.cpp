#include "controls/frmAbout.h"

#include "base/Language.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// A menu caption without its accelerator mark ("Fit &Width" -> "Fit Width").
QString plain(const QString &caption)
{
    QString s = caption;
    return s.remove(u'&');
}

struct SheetRow {
    QString keys;
    QString action;
};

QString table(const QString &heading, const QList<SheetRow> &rows)
{
    QString html = u"<tr><td colspan='2' style='padding-top:6px'><b>"_s + heading.toHtmlEscaped()
                   + u"</b></td></tr>"_s;
    for (const SheetRow &row : rows)
        html += u"<tr><td style='padding-right:14px; white-space:nowrap'><tt>"_s + row.keys.toHtmlEscaped()
                + u"</tt></td><td>"_s + row.action.toHtmlEscaped() + u"</td></tr>"_s;
    return html;
}

} // namespace

QString frmAbout::CheatSheet()
{
    const QList<SheetRow> keys = {
        {u"Ctrl+A"_s, u"Select all"_s},
        {u"Ctrl+C"_s, u"Copy"_s},
        {u"Ctrl+V"_s, u"Paste at the pointer"_s},
        {u"Ctrl+D"_s, u"Duplicate"_s},
        {u"Delete"_s, u"Delete the selection"_s},
        {u"Ctrl+W"_s, plain(Lang(60))},
        {u"Ctrl+H"_s, plain(Lang(61))},
        {u"Ctrl+Z"_s, u"Zoom tool"_s},
        {u"Ctrl+L"_s, Lang(41)},
        {u"Ctrl+M"_s, Lang(40)},
        {u"Esc"_s, u"Cancel a drag, then clear the selection, then leave the tool"_s},
        {u"+  /  \u2212"_s, u"Zoom in / out"_s},
        {u",  /  ."_s, u"Line spacing (object line)"_s},
        {u"Alt+Backspace"_s, Lang(34)},
        {u"Ctrl+Y, Ctrl+Shift+Z"_s, Lang(35)},
        {u"Arrow keys"_s, u"Nudge the selection (Shift: \u00D710)"_s},
    };
    const QList<SheetRow> mouse = {
        {u"Click, Shift+click"_s, u"Select, add to the selection"_s},
        {u"Drag on the ground"_s, u"Box selection"_s},
        {u"Drag a selection"_s, u"Move it"_s},
        {u"Shift/Ctrl+wheel"_s, u"Zoom"_s},
        {u"Middle/right drag"_s, u"Pan the view"_s},
        {u"Drag from the palette"_s, u"Place an object or a pack"_s},
    };
    return u"<table cellspacing='0' cellpadding='1'>"_s + table(u"Keys"_s, keys) + table(u"Mouse"_s, mouse)
           + u"</table>"_s;
}

frmAbout::frmAbout(QWidget *parent) : QDialog(parent)
{
    setObjectName(u"frmAbout"_s);
    setWindowTitle(u"About Varno"_s);

    auto *icon = new QLabel(this);
    icon->setPixmap(QPixmap(u":/icons/varno.png"_s));
    icon->setAlignment(Qt::AlignTop);

    auto *name = new QLabel(u"Varno"_s, this);
    name->setObjectName(u"lblName"_s);
    QFont big = name->font();
    big.setPointSizeF(big.pointSizeF() * 1.8);
    big.setBold(true);
    name->setFont(big);

    auto *version = new QLabel(u"Version "_s + QStringLiteral(VARNO_VERSION), this);
    version->setObjectName(u"lblVersion"_s);
    auto *purpose = new QLabel(u"A layout editor for Live for Speed."_s, this);
    auto *licence = new QLabel(u"Copyright \u00A9 2026 The Varno developers.<br>"
                               u"Free software under the MIT licence."_s,
                               this);
    licence->setObjectName(u"lblLicence"_s);
    licence->setTextFormat(Qt::RichText);

    auto *heading = new QVBoxLayout;
    heading->setSpacing(2);
    heading->addWidget(name);
    heading->addWidget(version);
    heading->addSpacing(6);
    heading->addWidget(purpose);
    heading->addWidget(licence);
    heading->addStretch(1);

    auto *top = new QHBoxLayout;
    top->setSpacing(14);
    top->addWidget(icon);
    top->addLayout(heading, 1);

    auto *sheet = new QLabel(CheatSheet(), this);
    sheet->setObjectName(u"lblSheet"_s);
    sheet->setTextFormat(Qt::RichText);
    sheet->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(18, 18, 18, 12);
    outer->setSpacing(12);
    outer->addLayout(top);
    outer->addWidget(sheet);
    outer->addWidget(buttons);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}
