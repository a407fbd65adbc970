@echo off
rem Tries the station without touching its data: takes a dozen samples from the recorder that its
rem settings name, in a fresh folder.
rem
rem   demo.cmd [FOLDER]     keeps the station's files in FOLDER, which is created if missing; refuses a
rem                         folder that already holds a station
setlocal
set "station=%~dp0"
set "folder=%~f1"
if "%~1"=="" set "folder=%TEMP%\monitor_autoclava_demo_%RANDOM%"
if exist "%folder%\config\*" goto taken
if exist "%folder%\mdb\*" goto taken

for %%d in (config img mdb\arhive) do mkdir "%folder%\%%d"
for /f "delims=" %%f in ('dir /b "%station%mdb\*.mdb"') do copy "%station%defaults\mdb\autoclava1.mdb" "%folder%\mdb\%%f" >nul
copy "%station%config\config.ini" "%folder%\config" >nul
if not exist "%folder%\config\config.ini" exit /b 1
if not exist "%folder%\mdb\*.mdb" exit /b 1
rem A backslash before the closing quote would belong to the name.
"%station%station_demo.exe" "%folder%\."
set result=%errorlevel%
if "%~1"=="" rmdir /s /q "%folder%"
exit /b %result%

:taken
echo demo: "%folder%" already holds a station; name another folder 1>&2
exit /b 1
