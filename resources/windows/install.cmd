@echo off
rem Tells SteamVR of the driver in this folder:      install.cmd [/quiet]
rem and makes it forget the driver again:            uninstall.cmd [/quiet]
rem Both call SteamVR's own vrpathreg.exe for this folder. Installing also deletes what an older version left in it.
rem /quiet does not wait for a key.
rem
rem Exit codes: 0 done, 1 this folder is incomplete, 2 SteamVR keeps no list of its folders here, 3 that list names no
rem folder of SteamVR, 4 there is no vrpathreg.exe in it, 5 vrpathreg.exe failed, 6 the driver is in use.
rem
rem Paths never stand in a call's arguments, since call expands them a second time, nor outside quotes: they may hold
rem blanks, ampersands, carets, percent signs and exclamation marks.
setlocal EnableExtensions DisableDelayedExpansion

set "verb=adddriver"
set "quiet="
set "files=files-@PROJECT_VERSION@.txt"
:next_argument
if "%~1"=="" goto begin
if /i "%~1"=="/uninstall" set "verb=removedriver"
if /i "%~1"=="/quiet" set "quiet=1"
shift
goto next_argument

:begin
for %%I in ("%~dp0.") do set "folder=%%~fI"
set "registry=%LOCALAPPDATA%\openvr\openvrpaths.vrpath"

if "%verb%"=="removedriver" goto find_runtime
if not exist "%folder%\bin\win64\driver_ombrel.dll" goto incomplete
if not exist "%folder%\driver.vrdrivermanifest" goto incomplete
if not exist "%folder%\resources\%files%" goto incomplete
rem Windows opens no library for writing while it is loaded. Where the manifest cannot be written either, this user may not
rem write here, and that tells nothing.
set "file=bin\win64\driver_ombrel.dll"
call :open_for_writing
if not errorlevel 1 goto find_runtime
set "file=driver.vrdrivermanifest"
call :open_for_writing
if not errorlevel 1 goto in_use

:find_runtime
if not exist "%registry%" goto no_registry
call :read_registry
if not defined runtime goto no_runtime
set "vrpathreg=%runtime%\bin\win64\vrpathreg.exe"
if not exist "%vrpathreg%" goto no_vrpathreg

"%vrpathreg%" %verb% "%folder%"
set "code=%errorlevel%"
if not "%code%"=="0" goto vrpathreg_failed
if "%verb%"=="removedriver" goto removed
call :delete_leftovers
echo SteamVR now knows the Ombrel driver in
echo   "%folder%"
echo If SteamVR is running, restart it. Start Ombrel.exe first: without it the driver declines.
echo Leave this folder where it is; before you move or delete it, run uninstall.cmd.
set "code=0"
goto end

:removed
echo SteamVR no longer knows the Ombrel driver in
echo   "%folder%"
echo If SteamVR is running, restart it. This folder may now be deleted.
set "code=0"
goto end

:incomplete
echo Nothing was changed: this folder is not complete.
echo   "%folder%"
echo It lacks bin\win64\driver_ombrel.dll, driver.vrdrivermanifest or resources\%files%.
echo Unpack the whole archive and run install.cmd there.
set "code=1"
goto end

:in_use
echo Nothing was changed: SteamVR is running with the driver in this folder, so Windows could not replace it.
echo   "%folder%\bin\win64\driver_ombrel.dll"
echo Close SteamVR, unpack the archive to this place once more, and run this again.
set "code=6"
goto end

:no_registry
echo Nothing was changed: SteamVR was not found. It keeps the list of its folders in
echo   "%registry%"
echo and there is no such file. Install SteamVR, start it once, and run this again.
set "code=2"
goto end

:no_runtime
echo Nothing was changed: SteamVR was not found. The list of its folders,
echo   "%registry%"
if defined unreadable echo writes its folder with escaped letters, which this script cannot read.
if not defined unreadable echo does not name its folder. Start SteamVR once, and run this again.
call :say_by_hand
set "code=3"
goto end

:no_vrpathreg
echo Nothing was changed: SteamVR was not found. It is said to be in
echo   "%runtime%"
echo but there is no bin\win64\vrpathreg.exe in it. Start SteamVR once, and run this again.
call :say_by_hand
set "code=4"
goto end

:vrpathreg_failed
echo SteamVR's own program failed with code %code%:
echo   "%vrpathreg%" %verb% "%folder%"
set "code=5"
goto end

:end
if not defined quiet pause
exit /b %code%

:say_by_hand
echo By hand, this does the same, with the folder of SteamVR put in:
echo   "<SteamVR>\bin\win64\vrpathreg.exe" %verb% "%folder%"
exit /b

rem Where a redirection fails, the command is not run, and errorlevel stays as it was.
:open_for_writing
call :fail
call :succeed 2>nul >>"%folder%\%file%"
exit /b %errorlevel%

:fail
exit /b 1

:succeed
exit /b 0

rem A version lists its files in resources\files-<version>.txt. The list of an older one, over which this one was unpacked,
rem is still there, and so are files that only that one had. What no list names is the user's and stays.
:delete_leftovers
pushd "%folder%"
for %%L in (resources\files-*.txt) do (
  set "list=%%~nxL"
  call :delete_files_of_list
)
popd
exit /b

:delete_files_of_list
if /i "%list%"=="%files%" exit /b
for /f "usebackq delims=" %%F in ("resources\%list%") do (
  set "file=%%F"
  call :delete_unless_ours
)
del /q "resources\%list%"
exit /b

:delete_unless_ours
for /f "usebackq delims=" %%F in ("resources\%files%") do if /i "%file%"=="%%F" set "file="
if not defined file exit /b
if not exist "%file%" exit /b
del /q "%file%"
echo Deleted "%file%", which an older version left.
exit /b

rem Sets runtime to the first entry of the list "runtime", or leaves it undefined, with unreadable set if there is one.
rem The file is JSON in UTF-8, which cmd reads right only in that code page.
:read_registry
set "runtime="
set "unreadable="
set "codepage="
set "wanted=key"
for /f "tokens=2 delims=:." %%C in ('chcp') do set "codepage=%%C"
chcp 65001 >nul 2>&1
for /f "usebackq delims=" %%L in ("%registry%") do (
  set "rest=%%L*"
  call :take_line
)
if defined codepage chcp %codepage% >nul 2>&1
if not defined runtime exit /b
set "plain=%runtime:\\=%"
if not "%plain:\u=%"=="%plain%" goto unreadable_runtime
set "runtime=%runtime:\/=/%"
set "runtime=%runtime:\\=\%"
set "runtime=%runtime:/=\%"
exit /b

:unreadable_runtime
set "runtime="
set "unreadable=1"
exit /b

rem Takes one line of the file, in rest. No path holds a question mark, so these may stand for the quotes, nor an asterisk,
rem so one marks the end of the line. The variable is thus never empty: cmd.exe as Wine has it cannot take the first
rem character off the last one.
:take_line
set "rest=%rest:"=?%"
:take_rest
if "%wanted%"=="nothing" exit /b
if "%rest%"=="*" exit /b
if not "%wanted%"=="key" goto take_next
if "%rest:?runtime?=%"=="%rest%" exit /b
set "rest=%rest:*?runtime?=%"
set "wanted=colon"
goto take_rest

rem After the key: blanks, a colon, blanks, an opening bracket, blanks, and then the string. All else ends it.
rem Of the two comparisons with a blank the second is with a tab.
:take_next
set "first=%rest:~0,1%"
if "%first%"=="?" goto take_string
set "rest=%rest:~1%"
if "%first%"==" " goto take_rest
if "%first%"=="	" goto take_rest
if "%wanted%%first%"=="colon:" set "wanted=string" & goto take_rest
if "%wanted%%first%"=="string[" goto take_rest
rem A value that reads "runtime" is not the key.
if "%wanted%"=="colon" set "wanted=key" & goto take_rest
set "wanted=nothing"
exit /b

:take_string
if "%wanted%"=="colon" set "wanted=key" & goto take_rest
set "wanted=nothing"
if "%rest:~0,2%"=="??" exit /b
rem A string that does not end in its line is none: behind one that does there is at least the mark.
for /f "tokens=1,2 delims=?" %%S in ("%rest%") do if not "%%T"=="" set "runtime=%%S"
exit /b
