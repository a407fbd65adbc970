; The station's installer, Romanian and English. Defined by the caller: VERSION, STAGE (the folder to
; install), ICON, OUTPUT, and for 64 bit WIN64.
;
; Settings, databases and pictures are laid once; neither an update nor the uninstaller touches them.

Unicode true
!ifdef WIN64
Target amd64-unicode
!endif
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!define NAME "Monitorizare PLC"
!define PROGRAM monitor_autoclava.exe
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\monitor_autoclava"

Name "${NAME}"
OutFile "${OUTPUT}"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
InstallDirRegKey HKLM "${UNINSTALL_KEY}" InstallLocation
ShowInstDetails nevershow

VIProductVersion ${VERSION}.0
VIAddVersionKey ProductName "${NAME}"
VIAddVersionKey ProductVersion ${VERSION}
VIAddVersionKey FileVersion ${VERSION}
VIAddVersionKey FileDescription "${NAME}"
VIAddVersionKey LegalCopyright GPL-3.0-or-later

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_FINISHPAGE_RUN "$INSTDIR\${PROGRAM}"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE Romanian
!insertmacro MUI_LANGUAGE English

LangString programRuns ${LANG_ROMANIAN} "Programul este pornit. Închideți-l, apoi încercați din nou."
LangString programRuns ${LANG_ENGLISH} "The program is running. Close it, then try again."
LangString dataStays ${LANG_ROMANIAN} "Setările, bazele de date și imaginile rămân în $INSTDIR."
LangString dataStays ${LANG_ENGLISH} "Settings, databases and pictures stay in $INSTDIR."

; An open program cannot be written: a half-replaced one would not start again.
!macro refuseWhileRunning
    ${If} ${FileExists} "$INSTDIR\${PROGRAM}"
        ClearErrors
        FileOpen $0 "$INSTDIR\${PROGRAM}" a
        ${If} ${Errors}
            MessageBox MB_OK|MB_ICONEXCLAMATION "$(programRuns)" /SD IDOK
            SetErrorLevel 2
            Quit
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

Function .onInit
    ; Not under Program Files: the station writes beside its program.
    ${If} $INSTDIR == ""
        ReadEnvStr $0 SystemDrive
        StrCpy $INSTDIR "$0\monitor_autoclava"
    ${EndIf}
FunctionEnd

Section
    !insertmacro refuseWhileRunning
    SetShellVarContext all

    SetOverwrite on
    SetOutPath "$INSTDIR"
    File /r /x config /x mdb /x img "${STAGE}\*"
    SetOverwrite off
    SetOutPath "$INSTDIR\config"
    File "${STAGE}\config\*"
    SetOutPath "$INSTDIR\mdb"
    File "${STAGE}\mdb\*.mdb"
    CreateDirectory "$INSTDIR\mdb\arhive"
    CreateDirectory "$INSTDIR\img"
    ; Every operator of this computer: the group of its users, by its number in every language.
    nsExec::Exec 'icacls "$INSTDIR" /grant "*S-1-5-32-545:(OI)(CI)M" /Q'
    Pop $0

    SetOutPath "$INSTDIR"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
    CreateShortcut "$DESKTOP\${NAME}.lnk" "$INSTDIR\${PROGRAM}"

    WriteUninstaller "$INSTDIR\uninstall.exe"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "${NAME}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion ${VERSION}
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\${PROGRAM}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
SectionEnd

Section Uninstall
    !insertmacro refuseWhileRunning
    SetShellVarContext all

    ; By name: the folder may hold what others put there.
    !include "${REMOVAL}"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\${NAME}.lnk"
    Delete "$DESKTOP\${NAME}.lnk"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    ${If} ${FileExists} "$INSTDIR\*"
        MessageBox MB_OK|MB_ICONINFORMATION "$(dataStays)" /SD IDOK
    ${EndIf}
SectionEnd
