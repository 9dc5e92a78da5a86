#pragma once
// The .lyt association on freedesktop systems, in the user's own folders only:
//  - a MIME type for *.lyt:   $XDG_DATA_HOME/mime/packages/varno-lyt.xml
//  - a desktop entry:         $XDG_DATA_HOME/applications/varno.desktop, running this
//                             executable with the file
//  - the default application: [Default Applications] of $XDG_CONFIG_HOME/mimeapps.list
// Another program holds the association when another desktop entry (or a Varno entry
// for another executable) is the default for the type in any mimeapps.list that counts.

#include "app/FileAssociation.h"

#include <QStringList>

class XdgFileAssociation : public FileAssociation {
public:
    static constexpr const char *MimeType = "application/x-lfs-layout";
    static constexpr const char *DesktopId = "varno.desktop";

    // executable: the program the desktop entry runs. updateCaches: whether to run
    // update-mime-database and update-desktop-database after a change (when present).
    explicit XdgFileAssociation(QString executable, bool updateCaches = true);

    AssociationState state() const override;
    void remove() override;
    void create() override;
    // Says which program opens .lyt files now and where that is set.
    void resolveByHand() override;

    // The default application for the type and the mimeapps.list that sets it, in the
    // order desktops search them (XDG mime-apps rules); empty when none does.
    struct Holder {
        QString desktopId;
        QString listFile;
    };
    Holder holder() const;
    // The Exec line the entry gets: the executable quoted, then %f.
    QString execLine() const;

    // The folders, from the environment at every call (with the standard fall-backs).
    static QString dataHome();
    static QString configHome();
    static QStringList dataDirs();
    static QStringList configDirs();
    QString mimePackagePath() const;
    QString desktopEntryPath() const;
    QString userMimeAppsPath() const;

private:
    // The Name of a desktop entry, looked up in the data folders; the id when unknown.
    QString applicationName(const QString &desktopId) const;
    void updateCaches() const;

    QString m_executable;
    bool m_updateCaches;
};
