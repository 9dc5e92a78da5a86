; Varno's Windows installer. scripts/windows.sh makes it with
;   makensis -DVERSION=x.y.z -DSTAGE=<installed folder> -DLISTS=<folder> -DICON=<ico> -DOUTFILE=<exe> Varno.nsi
; after writing the file lists files.nsh, userfiles.nsh and unfiles.nsh into LISTS.
;
; It installs for the current user only, without administrator rights, into
; %LOCALAPPDATA%\Programs\Varno. That folder is Varno's application folder, where it
; writes Varno.cfg, Varno.log, packs and layouts, so it has to stay writable by the user.

; A 64-bit installer for a 64-bit program (and one that 64-bit-only Wine can run).
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user

!define UNINST_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Varno"

Name "Varno ${VERSION}"
OutFile "${OUTFILE}"
InstallDir "$LOCALAPPDATA\Programs\Varno"
InstallDirRegKey HKCU "${UNINST_KEY}" "InstallLocation"

!include "MUI2.nsh"
!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN "$INSTDIR\Varno.exe"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Section "Varno"
  SetShellVarContext current
  ; The program, Qt and the shipped pictures and languages are replaced on every install.
  !include "${LISTS}/files.nsh"
  ; The sample packs and layouts are the user's to change: never overwrite them.
  SetOverwrite off
  !include "${LISTS}/userfiles.nsh"
  SetOverwrite on

  SetOutPath "$INSTDIR"
  WriteUninstaller "$INSTDIR\Uninstall.exe"
  CreateShortCut "$SMPROGRAMS\Varno.lnk" "$INSTDIR\Varno.exe"

  WriteRegStr HKCU "${UNINST_KEY}" "DisplayName" "Varno"
  WriteRegStr HKCU "${UNINST_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINST_KEY}" "DisplayIcon" "$INSTDIR\Varno.exe"
  WriteRegStr HKCU "${UNINST_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINST_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINST_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINST_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINST_KEY}" "NoRepair" 1
SectionEnd

Section "Uninstall"
  SetShellVarContext current
  ; Only what the installer put there. Varno.cfg, Varno.log and the packs and layouts
  ; folders stay, and with them the folder itself.
  !include "${LISTS}/unfiles.nsh"
  ; The uninstaller runs from a copy in TEMP; the original may take a moment to let go.
  StrCpy $0 0
  retry:
    Delete "$INSTDIR\Uninstall.exe"
    IfFileExists "$INSTDIR\Uninstall.exe" 0 gone
    IntOp $0 $0 + 1
    Sleep 500
    IntCmp $0 10 gone retry gone
  gone:
  Delete "$SMPROGRAMS\Varno.lnk"
  DeleteRegKey HKCU "${UNINST_KEY}"
  RMDir "$INSTDIR"
SectionEnd
