@echo off
rem Plays a session of a companion with the driver, and tells which rules of the protocol the companion breaks:
rem   try_companion.cmd [--seconds N] [--fps N] [--settings FILE] PATH\Ombrel.exe [ARGUMENT...]
rem Arguments behind the program are its own; --settings "bin\virtual.json" is the virtual display. The folder
rem companion-report, emptied for each session, gets what the companion printed, the verdict and all messages.
rem Exit codes: 0 no rule was broken and frames came, 1 one was, 3 no frame came, 2 it could not be tried.
if exist "%~dp0bin\recorded_runtime.exe" goto run
echo This folder is not complete. Unpack the whole archive; look whether a virus scanner took a file.
exit /b 2

:run
if exist "%~dp0companion-report" rmdir /s /q "%~dp0companion-report"
mkdir "%~dp0companion-report"
echo == playing the session
"%~dp0bin\recorded_runtime.exe" --driver "%~dp0driver\ombrel" --haptics "%~dp0bin\haptics.json" --monitor "%~dp0bin\monitor\vrmonitor.exe" --recording "%~dp0companion-report\driver.recording" --driver-log "%~dp0companion-report\driver.log" --companion-log "%~dp0companion-report\companion.log" %* >"%~dp0companion-report\runtime.log"
if %errorlevel%==0 goto judge
if not exist "%~dp0companion-report\driver.recording" exit /b 2
echo The runtime ended with a failure: "%~dp0companion-report\runtime.log"

:judge
echo.
echo == the verdict
"%~dp0bin\ombrel_check.exe" --driver "%~dp0companion-report\driver.recording" --json "%~dp0companion-report\check.json" --template "%~dp0bin\template.html" --html "%~dp0companion-report\report.html" >"%~dp0companion-report\check.txt"
set result=%errorlevel%
type "%~dp0companion-report\check.txt"
"%~dp0bin\ombrel_inspect.exe" "%~dp0companion-report\driver.recording" >"%~dp0companion-report\messages.txt"
echo The report is in "%~dp0companion-report"
exit /b %result%
