#include "app/LayoutSession.h"

#include "base/Dialogs.h"
#include "base/ErrorLog.h"
#include "base/Language.h"
#include "base/Runtime.h"
#include "base/Settings.h"
#include "core/LayoutFormat.h"
#include "core/SafeWrite.h"
#include "view/DocumentEdit.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

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

LayoutSession::LayoutSession(QObject *parent) : QObject(parent) {}

LayoutSession::~LayoutSession()
{
    // The stack reports its clearing as it goes; nobody may hear that from a session
    // that is already half gone.
    m_undo.blockSignals(true);
}

bool LayoutSession::openLayout(const QString &fileName, Missing missing)
{
    setFileName(fileName);
    // A missing background or an unknown type has been told to the user; the layout
    // still opens, without bounds, so nothing can be placed until a picture is there.
    LayoutLoadBG();
    if ((missing == Missing::Refuse || QFileInfo::exists(fileName)) && !LayoutOpen())
        return false;
    m_undo.clear();
    m_undo.setClean();
    return true;
}

void LayoutSession::setFileName(const QString &fileName)
{
    m_fileName = fileName;
    m_layoutName = fileTitle(fileName);
    m_doc.setLayoutType(m_layoutName.left(3).toUpper());
}

bool LayoutSession::isUntitled() const
{
    return m_layoutName.mid(4) == Lang(104) + QStringLiteral(".lyt");
}

bool LayoutSession::Edited() const
{
    // Steps that can be redone count too: save, then undo, and the layout differs from
    // the file again. Undoing back to the save clears the mark.
    return !m_undo.isClean();
}

// --- background --------------------------------------------------------------------

bool LayoutSession::LayoutLoadBG()
{
    bool loaded = false;
    guarded(QStringLiteral("frmLayout.LayoutLoadBG"), [&] {
        m_doc.ResetStartMarker();
        const lyt::TypeInfo *type = lyt::typeInfo(m_doc.LayoutType());
        if (!type) {
            // Logged as well as shown: the layout stays open, without bounds.
            LogError(m_doc.LayoutType() + QStringLiteral("\r\n") + Lang(164), 1);
            return;
        }
        const QString code = QLatin1String(type->code);
        const QString option = code == QLatin1String("AU1") ? options().AU1
            : code == QLatin1String("AU2")                  ? options().AU2
            : code == QLatin1String("BL3")                  ? options().BL3
                                                            : options().AU34;
        if (option.isEmpty() || !QFileInfo::exists(option))
            m_bgName = AppPath() + QStringLiteral("backgrounds") + QDir::separator() + QLatin1String(type->background);
        else
            m_bgName = option;

        if (!m_bgName.isEmpty() && !QFileInfo::exists(m_bgName)) {
            m_background = cBitmap();
            m_doc.setBounds(0, 0);
            dialogs().message(m_bgName + QStringLiteral("\r\n\r\n") + Lang(166), QString(), MsgIcon::Information);
            return;
        }
        cBitmap picture;
        if (!picture.LoadFromFile(m_bgName))
            rt::raise(rt::InvalidPicture);
        m_background = std::move(picture);
        m_doc.setBounds(m_background.Width(), m_background.Height());
        m_doc.setBackgroundScale(float(double(m_background.Width()) / type->span));
        loaded = true;
    });
    return loaded;
}

bool LayoutSession::backgroundMissing() const
{
    return m_background.isNull() && lyt::typeInfo(m_doc.LayoutType());
}

void LayoutSession::setBGName(const QString &name)
{
    const QString path = AppPath() + QStringLiteral("backgrounds") + QDir::separator() + name;
    cBitmap picture;
    if (!picture.LoadFromFile(path))
        rt::raise(rt::InvalidPicture, path);
    m_bgName = path;
    m_background = std::move(picture);
    m_doc.setBounds(m_background.Width(), m_background.Height());
}

// --- files -------------------------------------------------------------------------

bool LayoutSession::LayoutOpen()
{
    if (!QFileInfo(m_fileName).isFile()) {
        dialogs().message(m_fileName + QStringLiteral("\r\n\r\n") + Lang(166), QString(), MsgIcon::Information);
        return false;
    }
    const bool done = guarded(kOpen, [&] {
        QFile file(m_fileName);
        if (!file.open(QIODevice::ReadOnly))
            rt::raise(file.error() == QFileDevice::PermissionsError ? rt::PermissionDenied : rt::PathFileAccessError);
        m_doc.ReadLayout(file, m_layoutName);
    });
    m_doc.SelectionUpdate(false);
    return done;
}

bool LayoutSession::LayoutSave(bool saveAs)
{
    bool saved = false;
    guarded(kSave, [&] {
        const QString type = m_doc.LayoutType();
        if (saveAs || isUntitled()) {
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
                if (!lyt::typeInfo(type) || title.left(3).toUpper() == type
                    || dialogs().message(WrongTypeNameText(title, type), Lang(32), MsgIcon::Exclamation,
                                         MsgButtons::YesNo)
                           != MsgResult::Yes)
                    break;
                request.initialDir = chosen.left(lastSeparator(chosen));
                request.fileName = type + QLatin1Char('_') + title;
            }
            if (options().RememberSaveFolder) {
                // The count is the file name's length less one, not the folder's length.
                // Users' Varno.cfg files hold folders written this way, so it stays.
                const int keep = int(chosen.length()) - lastSeparator(chosen) - 1;
                options().SaveFolder = chosen.left(std::max(keep, 0));
            }
            // The type stays the one the layout was opened as, whatever the new name says.
            m_fileName = chosen;
            m_layoutName = fileTitle(chosen);
        }
        if (m_doc.Revision() != 250 && m_doc.Revision() != 251)
            m_doc.setRevision(251);

        bool unsupported = false;
        const QByteArray bytes = m_doc.LayoutBytes(&unsupported);
        WriteKeepingTail(m_fileName, bytes);
        if (unsupported) {
            // The header is on disk, the objects are not; the layout stays unsaved.
            dialogs().message(type + QStringLiteral("\r\n") + Lang(164), QStringLiteral("Save Error"),
                              MsgIcon::Error);
            return;
        }
        emit LayoutNameChanged(m_layoutName);
        m_undo.setClean();
        saved = true;
    });
    return saved;
}

void LayoutSession::PackWrite()
{
    guarded(QStringLiteral("frmLayout.PackWrite"), [&] {
        const QString site = m_doc.LayoutType().left(2);
        FileDialogRequest request;
        request.fileName = site + QLatin1Char('_') + Lang(104) + QStringLiteral(".pack");
        request.initialDir = AppPath() + QStringLiteral("packs");
        request.defaultExt = QStringLiteral("pack");
        request.filter = Lang(101) + QStringLiteral(" (*.pack)|*.pack|") + Lang(102) + QStringLiteral(" (*.*)|*.*");
        request.filterIndex = 1;
        QString path;
        for (;;) {
            path = dialogs().saveFile(request);
            if (path.isEmpty())
                return;
            // The palette shows a pack only to layouts of its site, which it reads from
            // the name, so the name must carry the site.
            const QString title = fileTitle(path);
            if (title.left(3).toUpper() == site + QLatin1Char('_') && title.right(5) == QLatin1String(".pack"))
                break;
            dialogs().message(Lang(168), QString(), MsgIcon::None);
        }
        WriteKeepingTail(path, m_doc.SelectionPackBytes());
    });
}

void LayoutSession::PackRead(const QString &name, int16_t x, int16_t y)
{
    const QString where = QStringLiteral("frmLayout.PackRead");
    record(QFileInfo(name).completeBaseName(), 0, [&] {
        guarded(where, [&] {
            const QString relative = QStringLiteral("packs") + QDir::separator() + name;
            const QString path = AppPath() + relative;
            if (!QFileInfo(path).isFile()) {
                LogError(relative + QStringLiteral("\r\n\r\n") + Lang(166), 1);
                return;
            }
            // A pack that cannot be read still leaves nothing selected, as a good one
            // would leave only itself.
            m_doc.SelectAll(false);
            const PackData pack = ReadPackFile(path);
            m_doc.PlacePack(pack, x, y);
        });
        guarded(where, [&] { m_doc.SelectionUpdate(true); });
        m_doc.RaiseUpdates();
    });
}

// --- edits -------------------------------------------------------------------------

bool LayoutSession::record(const QString &text, int mergeKey, const std::function<void()> &fn)
{
    if (mergeKey == 0)
        breakMerge();
    return RecordEdit(m_undo, m_doc, text, mergeKey, fn, [this] {
        m_doc.SelectionUpdate(true);
        m_doc.RaiseUpdates();
    });
}

int LayoutSession::mergeKeyFor(int kind)
{
    // A series only goes on while it acts on the same objects.
    QStringList selected;
    for (const selObject &s : m_doc.Selection())
        selected << s.strKey;
    if (kind != m_lastMergeKind || selected != m_lastMergeSelection) {
        ++m_mergeSerial;
        m_lastMergeKind = kind;
        m_lastMergeSelection = selected;
    }
    return kind * 1000000 + m_mergeSerial;
}
