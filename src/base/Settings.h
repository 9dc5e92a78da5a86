#pragma once
// Application-wide state: the application folder and the settings of Varno.cfg.

#include <QString>

// The folder of the executable, always ending in the platform's separator. Every
// relative file of the program (Varno.cfg, Varno.log, lang/, objects/, ...) is taken from it.
const QString &AppPath();
// Sets the application folder, adding the separator when it is missing.
void SetAppPath(const QString &folder);

struct Options {
    QString Language;
    QString AU1;
    QString AU2;
    QString AU34;
    QString BL3;
    QString OpenFolder;
    bool RememberOpenFolder = true;
    QString SaveFolder;
    bool RememberSaveFolder = true;
    qint32 SavePercent = 100;
    qint32 SaveQuality = 90;
    QString SaveType;

    // Every setting at its default for the current application folder.
    static Options defaults();
};

// The live settings, loaded by GetOptions and written by SaveOptions.
Options &options();

// The configuration file: AppPath() + "Varno.cfg".
QString ConfigPath();
