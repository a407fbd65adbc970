; The station's installer, Romanian and English. Defined by the caller: VERSION, STAGE (the folder to
; install), ICON, OUTPUT, the includes REFUSALS, SETTINGS_AND_DATA and REMOVAL (see make_installer), and
; for 64 bit WIN64.
;
; Settings, databases and pictures are installed once; neither an update nor the uninstaller touches them.
;
; Error levels: 2 refused, nothing changed; 3 installed, but only administrators may write in the folder;
; 4 interrupted, to be run again.

Unicode true
!ifdef WIN64
Target amd64-unicode
!endif
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include WinVer.nsh
!include x64.nsh

!define NAME "Monitorizare PLC"
!define PROGRAM monitor_autoclava.exe
!define FOLDER monitor_autoclava
; Not in the station's folder: every user may write there and could replace what an administrator runs.
!ifdef WIN64
!define UNINSTALLER_FOLDER "$PROGRAMFILES64\${FOLDER}"
!else
!define UNINSTALLER_FOLDER "$PROGRAMFILES32\${FOLDER}"
!endif
!define UNINSTALLER "${UNINSTALLER_FOLDER}\uninstall.exe"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\monitor_autoclava"

Name "${NAME}"
OutFile "${OUTPUT}"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
AllowSkipFiles off
; Replaced in .onInit. The folder page appends the last part to the folder that the user picks.
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
!define MUI_PAGE_CUSTOMFUNCTION_SHOW offerStart
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE Romanian
!insertmacro MUI_LANGUAGE English

LangString programRuns ${LANG_ROMANIAN} "Programul este pornit, sau un fișier al lui este deschis în alt program. Închideți-l, apoi încercați din nou."
LangString programRuns ${LANG_ENGLISH} "The program is running, or another program has one of its files open. Close it, then try again."
LangString tooOld ${LANG_ROMANIAN} "Programul are nevoie de Windows 10 sau mai nou."
LangString tooOld ${LANG_ENGLISH} "The program needs Windows 10 or later."
LangString diskFull ${LANG_ROMANIAN} "Nu este destul spațiu liber pe disc pentru $INSTDIR."
LangString diskFull ${LANG_ENGLISH} "There is not enough free space on the disk of $INSTDIR."
LangString otherWordSize ${LANG_ROMANIAN} "Acest Windows este pe 64 de biți: folosiți programul de instalare win64."
LangString otherWordSize ${LANG_ENGLISH} "This is a 64-bit Windows: use the win64 installer."
LangString foreignFolder ${LANG_ROMANIAN} "Folderul $INSTDIR conține deja altceva. Alegeți un folder nou sau gol."
LangString foreignFolder ${LANG_ENGLISH} "The folder $INSTDIR already holds other files. Choose a new or an empty folder."
LangString notWritable ${LANG_ROMANIAN} "Programul este instalat, dar utilizatorii nu au primit dreptul de scriere în $INSTDIR. Acordați-l înainte de pornire."
LangString notWritable ${LANG_ENGLISH} "The program is installed, but its users could not be granted write access to $INSTDIR. Grant it before you start the program."
LangString dataStays ${LANG_ROMANIAN} "Setările, bazele de date și imaginile rămân în $INSTDIR."
LangString dataStays ${LANG_ENGLISH} "Settings, databases and pictures are kept in $INSTDIR."

!macro warn TEXT LEVEL
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(${TEXT})" /SD IDOK
    SetErrorLevel ${LEVEL}
!macroend

!macro refuse TEXT
    !insertmacro warn ${TEXT} 2
    Quit
!macroend

; Under a temporary name until complete: the next run would take a truncated file for the operator's.
!macro layOnce FOLDER NAME
    ${IfNot} ${FileExists} "$INSTDIR\${FOLDER}\${NAME}"
        SetOutPath "$INSTDIR\${FOLDER}"
        File "/oname=${NAME}.new" "${STAGE}\${FOLDER}\${NAME}"
        ClearErrors
        Rename "${NAME}.new" "${NAME}"
        ${If} ${Errors}
            Abort
        ${EndIf}
    ${EndIf}
!macroend

; Refuses while a file is in use: a program replaced in part would not start. REFUSALS calls it for each
; file of the program.
!macro refuseWhileUsed FILE
    ${If} ${FileExists} "$INSTDIR\${FILE}"
        ClearErrors
        FileOpen $0 "$INSTDIR\${FILE}" a
        ${If} ${Errors}
            !insertmacro refuse programRuns
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend

Function .onInit
    ${IfNot} ${AtLeastWin10}
        !insertmacro refuse tooOld
    ${EndIf}
!ifndef WIN64
    ${If} ${RunningX64}
        !insertmacro refuse otherWordSize
    ${EndIf}
!endif
    ; Not under Program Files: the station writes beside its program.
    ${If} $INSTDIR == "$WINDIR\${FOLDER}"
        StrCpy $INSTDIR $WINDIR 2
        StrCpy $INSTDIR "$INSTDIR\${FOLDER}"
    ${EndIf}
FunctionEnd

; Sets $0 to 1 for a folder that is not empty and holds neither a station nor an interrupted installation:
; everything in it would become writable for every user.
Function lookIntoFolder
    StrCpy $0 0
    ReadRegStr $1 HKLM "${UNINSTALL_KEY}" InstallLocation
    ${If} $1 != $INSTDIR
    ${AndIfNot} ${FileExists} "$INSTDIR\${PROGRAM}"
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

; Started by the desktop, so with the user's rights instead of the installer's administrator rights.
Function startStation
    SetShellVarContext all
    Exec '"$WINDIR\explorer.exe" "$SMPROGRAMS\${NAME}.lnk"'
FunctionEnd

; Only after write access has been granted.
Function offerStart
    GetErrorLevel $0
    ${If} $0 == 3
        ${NSD_Uncheck} $mui.FinishPage.Run
    ${EndIf}
FunctionEnd

Function .onInstFailed
    SetErrorLevel 4
FunctionEnd

Section "-${NAME}" station
    Call lookIntoFolder ; a silent installation shows no pages
    ${If} $0 == 1
        !insertmacro refuse foreignFolder
    ${EndIf}
    Call refuseFullDisk
    !include "${REFUSALS}"
    SetShellVarContext all

    ; The installed version's list names every file it installed; the new version may lack some of them.
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" InstallLocation
    ${If} $0 == $INSTDIR
    ${AndIf} ${FileExists} "${UNINSTALLER}"
        ExecWait '"${UNINSTALLER}" /S /PROGRAMONLY _?=${UNINSTALLER_FOLDER}' $1
        ${If} $1 == 2 ; a file that only the installed version has; it removed nothing
            !insertmacro refuse programRuns
        ${EndIf}
    ${EndIf}

    ; Before the first file, so that an interrupted installation is recognised by the next run.
    WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
    SetOutPath "$INSTDIR"
    File /r /x config /x mdb /x img /x defaults "${STAGE}\*"
    SetOutPath "$INSTDIR\defaults" ; by itself: it holds folders of the names left out above
    File /r "${STAGE}\defaults\*"
    !include "${SETTINGS_AND_DATA}"
    CreateDirectory "$INSTDIR\mdb\arhive"
    CreateDirectory "$INSTDIR\img"
    ; Every operator of this computer: the group Users, by its SID, as its name depends on the language.
    nsExec::Exec '"$SYSDIR\icacls.exe" "$INSTDIR" /grant "*S-1-5-32-545:(OI)(CI)M" /Q'
    Pop $0
    ${If} $0 != 0
        !insertmacro warn notWritable 3
    ${EndIf}

    SetOutPath "$INSTDIR"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
    CreateShortcut "$DESKTOP\${NAME}.lnk" "$INSTDIR\${PROGRAM}"

    CreateDirectory "${UNINSTALLER_FOLDER}"
    WriteUninstaller "${UNINSTALLER}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "${NAME}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion ${VERSION}
    WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\${PROGRAM}"
    WriteRegStr HKLM "${UNINSTALL_KEY}" Publisher "Maintainers of the station"
    SectionGetSize ${station} $0
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" EstimatedSize $0 ; KiB
    WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"${UNINSTALLER}"'
    WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"${UNINSTALLER}" /S'
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
SectionEnd

; The old program is removed before the new one is copied: on a full disk neither would be left. In MiB, as
; numbers have 32 bits. An error flag means unknown free space. Must follow the section whose size it reads.
Function refuseFullDisk
    SectionGetSize ${station} $1 ; KiB
    IntOp $1 $1 / 1024
    ${GetRoot} "$INSTDIR" $0
    ${DriveSpace} "$0\" "/D=F /S=M" $2
    ${IfNot} ${Errors}
    ${AndIf} $2 <= $1
        !insertmacro refuse diskFull
    ${EndIf}
FunctionEnd

Function un.onInit
    ReadRegStr $INSTDIR HKLM "${UNINSTALL_KEY}" InstallLocation
    ${If} $INSTDIR == ""
        Quit ; nothing is installed
    ${EndIf}
FunctionEnd

Section Uninstall
    !include "${REFUSALS}"
    SetShellVarContext all

    ; File by file: the folder may hold files of others.
    !include "${REMOVAL}"
    ${GetParameters} $0
    ClearErrors
    ${GetOptions} $0 "/PROGRAMONLY" $1
    ${IfNot} ${Errors}
        Return ; an update goes on from here
    ${EndIf}

    RMDir "$INSTDIR"
    Delete "${UNINSTALLER}"
    RMDir "${UNINSTALLER_FOLDER}"
    Delete "$SMPROGRAMS\${NAME}.lnk"
    Delete "$DESKTOP\${NAME}.lnk"
    DeleteRegKey HKLM "${UNINSTALL_KEY}"
    ${If} ${FileExists} "$INSTDIR\*"
        MessageBox MB_OK|MB_ICONINFORMATION "$(dataStays)" /SD IDOK
    ${EndIf}
SectionEnd
