#pragma once
// Whether .lyt files open with this program, and the three things the options dialog
// can do about it. Windows keeps the association in the registry, freedesktop systems
// in the user's MIME, application and mimeapps.list files; the dialog sees only this.

#include <QString>
#include <memory>

enum class AssociationState {
    NotAssociated, // nothing opens .lyt files (or only a broken entry of ours)
    Associated,    // they open with this very executable
    OtherProgram,  // another program (or another copy of Varno) opens them
};

class FileAssociation {
public:
    virtual ~FileAssociation() = default;
    virtual AssociationState state() const = 0;
    // Takes away every entry this program makes; failures are ignored, and the next
    // state() shows what is really there.
    virtual void remove() = 0;
    // Makes this executable the program that opens .lyt files.
    virtual void create() = 0;
    // For another program's association: hands it to the user, who resolves it by
    // hand. Nothing is changed.
    virtual void resolveByHand() = 0;
};

// The association of this platform for the running executable.
std::unique_ptr<FileAssociation> NativeFileAssociation();
