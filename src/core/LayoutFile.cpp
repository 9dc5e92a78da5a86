// Reading and writing .lyt files for LayoutDocument.

#include "core/LayoutDocument.h"

#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Settings.h"
#include "catalogue/ObjectKinds.h"
#include "base/Dialogs.h"
#include "core/LayoutFormat.h"
#include "base/Runtime.h"
#include "core/SafeWrite.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace {
const QString kOpen = QStringLiteral("frmLayout.LayoutOpen");
const QString kSave = QStringLiteral("frmLayout.LayoutSave");

// 1-based position of the last folder separator, 0 when there is none.
int lastSeparator(const QString &path)
{
    return int(std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')))) + 1;
}
} // namespace

QString WrongTypeNameText(const QString &title, const QString &type)
{
    return QStringLiteral("\"%1\" does not begin with %2, the type of this layout. Varno takes a layout's type "
                          "from the first three letters of its file name, and the simulator lists a layout only "
                          "under the area its name begins with.\r\n\r\nChoose another name? (No saves it "
                          "under this name all the same.)")
        .arg(title, type);
}

bool LayoutDocument::LayoutOpen()
{
    if (!QFileInfo(m_fileName).isFile()) {
        dialogs().message(m_fileName + QStringLiteral("\r\n\r\n") + Lang(166), QString(), MsgIcon::Information);
        return false;
    }
    bool done = false;
    guarded(kOpen, [&] {
        QFile file(m_fileName);
        if (!file.open(QIODevice::ReadOnly))
            rt::raise(file.error() == QFileDevice::PermissionsError ? rt::PermissionDenied : rt::PathFileAccessError);
        const QByteArray head = file.read(lyt::HeaderSize);
        if (head.size() < lyt::HeaderSize)
            rt::raise(rt::InputPastEndOfFile);
        m_layoutType = m_layoutName.left(3).toUpper();
        m_revision = uint8_t(head[7]);
        m_laps = uint8_t(head[10]);
        resetContent();

        const int16_t count = qFromLittleEndian<qint16>(head.constData() + 8);
        if (count < 0)
            rt::raise(rt::Overflow); // the count does not fit the signed 16 bits it is read into
        // Only what the count needs; anything after it is an old tail and is ignored.
        const QByteArray body = file.read(qint64(count) * lyt::RecordSize);
        file.close();

        const lyt::TypeInfo *type = lyt::typeInfo(m_layoutType);
        const lyt::PositionMap *map = lyt::positionMap(m_layoutType, m_revision);
        const bool au = IsAuSite();
        int16_t x = 0;
        int16_t y = 0;
        for (int i = 0; i < count; ++i) {
            if (!type)
                rt::raise(rt::InvalidCall, m_layoutName + QStringLiteral("\r\n\r\n") + Lang(164));
            if (body.size() < qsizetype(i + 1) * lyt::RecordSize)
                rt::raise(rt::InputPastEndOfFile);
            const lyt::FileRecord record = lyt::parseRecord(body.constData() + qsizetype(i) * lyt::RecordSize);
            // Without a map (BL3 revisions above 251) the position is left as it was.
            if (map)
                lyt::fromFile(*map, BoundsWidth(), BoundsHeight(), record.x, record.y, x, y);
            const lyt::DecodedObject d = lyt::decodeKind(record, au);
            int16_t angle = d.angle;
            uint8_t width = d.width;
            bool fromView = false;
            bool selected = false;
            ObjectAdd(uint8_t(d.id), x, y, angle, width, fromView, selected);
        }
        m_edited = false;
        done = true;
    });
    SelectionUpdate(false);
    return done;
}

QByteArray LayoutDocument::layoutBytes(bool *unsupported)
{
    *unsupported = false;
    QByteArray out = lyt::header(m_revision, m_objects.Count(), m_laps);
    const lyt::TypeInfo *type = lyt::typeInfo(m_layoutType);
    const lyt::PositionMap *map = lyt::positionMap(m_layoutType, m_revision);
    const bool au = IsAuSite();
    uint8_t previousFlags = 0;
    out.reserve(out.size() + m_objects.Count() * lyt::RecordSize);
    for (const varnoObject &o : m_objects) {
        if (!type || !map) {
            *unsupported = true;
            return out;
        }
        lyt::FileRecord r;
        lyt::toFile(*map, BoundsWidth(), BoundsHeight(), o.X(), o.Y(), r.x, r.y);
        r.z = au ? 255 : 35;
        r.flags = lyt::flagsFor(o.ID(), o.Width(), previousFlags);
        previousFlags = r.flags;
        r.index = FileIndexForKind(o.ID(), au);
        r.heading = o.ID() == Kind::RouteChecker ? o.RouteIndex() : lyt::headingFor(o.Angle());
        lyt::appendRecord(out, r);
    }
    return out;
}

bool LayoutDocument::LayoutSave(bool saveAs)
{
    bool saved = false;
    guarded(kSave, [&] {
        if (saveAs || m_layoutName.mid(4) == Lang(104) + QStringLiteral(".lyt")) {
            FileDialogRequest request;
            request.filter = Lang(100) + QStringLiteral(" (*.lyt)|*.lyt|") + Lang(102) + QStringLiteral(" (*.*)|*.*");
            request.filterIndex = 1;
            request.defaultExt = QStringLiteral("lyt");
            request.initialDir = options().SaveFolder;
            request.fileName = m_layoutName;
            QString chosen;
            while (true) {
                chosen = dialogs().saveFile(request);
                if (chosen.isEmpty())
                    return;
                // The name decides the type the file opens as, and the simulator lists a
                // layout only under the area its name begins with: a name without the
                // type would make the saved work look lost.
                const QString title = fileTitle(chosen);
                if (!lyt::typeInfo(m_layoutType) || title.left(3).toUpper() == m_layoutType
                    || dialogs().message(WrongTypeNameText(title, m_layoutType), Lang(32), MsgIcon::Exclamation,
                                         MsgButtons::YesNo)
                           != MsgResult::Yes)
                    break;
                request.initialDir = chosen.left(lastSeparator(chosen));
                request.fileName = m_layoutType + QLatin1Char('_') + title;
            }
            if (options().RememberSaveFolder) {
                // The count is the file name's length less one, not the folder's length.
                // Users' Varno.cfg files hold folders written this way, so it stays.
                const int keep = int(chosen.length()) - lastSeparator(chosen) - 1;
                options().SaveFolder = chosen.left(std::max(keep, 0));
            }
            m_fileName = chosen;
            m_layoutName = fileTitle(chosen);
        }
        if (m_revision != 250 && m_revision != 251)
            m_revision = 251;

        bool unsupported = false;
        const QByteArray bytes = layoutBytes(&unsupported);
        WriteKeepingTail(m_fileName, bytes);
        if (unsupported) {
            // The header is on disk, the objects are not; the layout stays unsaved.
            dialogs().message(m_layoutType + QStringLiteral("\r\n") + Lang(164), QStringLiteral("Save Error"),
                              MsgIcon::Error);
            return;
        }
        emit LayoutNameChanged(m_layoutName);
        m_edited = false;
        saved = true;
    });
    return saved;
}
