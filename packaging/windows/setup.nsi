; The installer: per user, without administrator's rights, so that the program can keep its files in its own folder.
; Takes VERSION, TREE (the folder to install), REMOVE (the lines that take it away), TOP (the checkout) and OUT.
Target amd64-unicode
SetCompressor /SOLID lzma
!include MUI2.nsh
!include FileFunc.nsh

Name "Tolvane"
OutFile "${OUT}"
InstallDir "$LOCALAPPDATA\Programs\Tolvane"
InstallDirRegKey HKCU "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tolvane" "InstallLocation"
RequestExecutionLevel user
ManifestDPIAware true
BrandingText "Tolvane ${VERSION}"
!define MUI_ICON "${TOP}/packaging/windows/tolvane.ico"
!define MUI_UNICON "${TOP}/packaging/windows/tolvane.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\tolvane.exe"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Tolvane"
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "Tolvane"
VIAddVersionKey FileDescription "Tolvane, FTP client: set-up"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright "(c) Quorvell. Free to use, free to share."

!insertmacro MUI_PAGE_LICENSE "${TOP}/LICENSE"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "French"
!insertmacro MUI_LANGUAGE "Spanish"
!insertmacro MUI_LANGUAGE "Danish"
!insertmacro MUI_LANGUAGE "German"
!insertmacro MUI_LANGUAGE "Italian"
!insertmacro MUI_LANGUAGE "Finnish"
!insertmacro MUI_LANGUAGE "Portuguese"
!insertmacro MUI_LANGUAGE "Swedish"
!insertmacro MUI_LANGUAGE "PortugueseBR"

; A program that runs cannot be replaced.
!macro WAIT_FOR_END
  ${If} ${FileExists} "$INSTDIR\tolvane.exe"
    ${Do}
      ClearErrors
      FileOpen $0 "$INSTDIR\tolvane.exe" a
      ${IfNot} ${Errors}
        FileClose $0
        ${ExitDo}
      ${EndIf}
      MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "Tolvane is running. Close it, then press Retry." /SD IDCANCEL IDRETRY +2
      Abort
    ${Loop}
  ${EndIf}
!macroend

Section
  !insertmacro WAIT_FOR_END
  SetOutPath "$INSTDIR"
  File /r "${TREE}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\Tolvane.lnk" "$INSTDIR\tolvane.exe"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Tolvane"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\tolvane.exe"
  WriteRegStr HKCU "${UNINSTALL}" "Publisher" "Quorvell"
  WriteRegStr HKCU "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD HKCU "${UNINSTALL}" "EstimatedSize" $0
SectionEnd

; What the user has made stays: the site book, the log, received files.
Section Uninstall
  !insertmacro WAIT_FOR_END
  !include "${REMOVE}"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR\Temp"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\Tolvane.lnk"
  DeleteRegKey HKCU "${UNINSTALL}"
SectionEnd
