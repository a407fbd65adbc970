; The station's installer, Romanian and English. Defined by the caller: VERSION, STAGE (the folder to
; install), ICON, OUTPUT, and for 64 bit WIN64.
;
; Settings, databases and pictures are laid once; neither an update nor the uninstaller touches them.
;
; Its error level: 2 when it refused and changed nothing, 3 when the station is installed but only
; administrators may write in its folder.

Unicode true
!ifdef WIN64
Target amd64-unicode
!endif
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!define NAME "Monitorizare PLC"
!define PROGRAM monitor_autoclava.exe
!define FOLDER monitor_autoclava
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\monitor_autoclava"

Name "${NAME}"
OutFile "${OUTPUT}"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
; Replaced in .onInit. Its last part is what the browser for folders appends to the chosen one.
InstallDir "$WINDIR\${FOLDER}"
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
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION startStation
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE checkChosenFolder
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE Romanian
!insertmacro MUI_LANGUAGE English

LangString programRuns ${LANG_ROMANIAN} "Programul este pornit. Închideți-l, apoi încercați din nou."
LangString programRuns ${LANG_ENGLISH} "The program is running. Close it, then try again."
LangString foreignFolder ${LANG_ROMANIAN} "Folderul $INSTDIR conține deja altceva. Alegeți un folder nou sau gol."
LangString foreignFolder ${LANG_ENGLISH} "The folder $INSTDIR already holds something else. Choose a new or an empty one."
LangString notWritable ${LANG_ROMANIAN} "Programul este instalat, dar utilizatorii nu au primit dreptul de scriere în $INSTDIR. Acordați-l înainte de pornire."
LangString notWritable ${LANG_ENGLISH} "The program is installed, but its users were not given the right to write in $INSTDIR. Grant it before the start."
LangString dataStays ${LANG_ROMANIAN} "Setările, bazele de date și imaginile rămân în $INSTDIR."
LangString dataStays ${LANG_ENGLISH} "Settings, databases and pictures stay in $INSTDIR."

!macro warn TEXT LEVEL
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(${TEXT})" /SD IDOK
    SetErrorLevel ${LEVEL}
!macroend

; An open program cannot be written: a half-replaced one would not start again.
!macro refuseWhileRuns FILE
    ${If} ${FileExists} "$INSTDIR\${FILE}"
        ClearErrors
        FileOpen $0 "$INSTDIR\${FILE}" a
        ${If} ${Errors}
            !insertmacro warn programRuns 2
            Quit
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend
!macro refuseWhileRunning
    !insertmacro refuseWhileRuns "${PROGRAM}"
    !insertmacro refuseWhileRuns jettool.exe
    !insertmacro refuseWhileRuns station_demo.exe
    !insertmacro refuseWhileRuns trm10c_simulator.exe
!macroend

Function .onInit
    ; Not under Program Files: the station writes beside its program.
    ${If} $INSTDIR == "$WINDIR\${FOLDER}"
        StrCpy $INSTDIR $WINDIR 2
        StrCpy $INSTDIR "$INSTDIR\${FOLDER}"
    ${EndIf}
FunctionEnd

; $0 becomes 1 for a folder that holds something but no station: all in it would become writable for
; every user.
Function lookIntoFolder
    StrCpy $0 0
    ${IfNot} ${FileExists} "$INSTDIR\${PROGRAM}"
    ${AndIfNot} ${FileExists} "$INSTDIR\config\config.ini"
        ${DirState} "$INSTDIR" $0
    ${EndIf}
FunctionEnd

Function checkChosenFolder
    Call lookIntoFolder
    ${If} $0 == 1
        MessageBox MB_OK|MB_ICONEXCLAMATION "$(foreignFolder)"
        Abort ; back to the page
    ${EndIf}
FunctionEnd

; By the desktop, which has the rights of whoever is at work; the installer has an administrator's.
Function startStation
    SetShellVarContext all
    Exec '"$WINDIR\explorer.exe" "$SMPROGRAMS\${NAME}.lnk"'
FunctionEnd

Section
    Call lookIntoFolder ; a silent installation shows no pages
    ${If} $0 == 1
        !insertmacro warn foreignFolder 2
        Quit
    ${EndIf}
    !insertmacro refuseWhileRunning
    SetShellVarContext all

    ; The installed version knows by name what it laid; the new one may not have all of it.
    ${If} ${FileExists} "$INSTDIR\uninstall.exe"
        ExecWait '"$INSTDIR\uninstall.exe" /S /PROGRAMONLY _?=$INSTDIR'
    ${EndIf}

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
    ${If} $0 != 0
        !insertmacro warn notWritable 3
    ${EndIf}

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
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/PROGRAMONLY" $1
    ${IfNot} ${Errors}
        Return ; an update goes on from here
    ${EndIf}

    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\${NAME}.lnk"
    Delete "$DESKTOP\${NAME}.lnk"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    ${If} ${FileExists} "$INSTDIR\*"
        MessageBox MB_OK|MB_ICONINFORMATION "$(dataStays)" /SD IDOK
    ${EndIf}
SectionEnd
