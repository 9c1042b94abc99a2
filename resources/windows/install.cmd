@echo off
rem Has SteamVR take the driver in this folder into its list: install.cmd [--replace] [/quiet]
rem --replace takes other copies of the driver out of the list. /quiet does not wait for a key.
rem
rem Exit codes: 0 done, 1 this folder is incomplete, 2 SteamVR keeps no list of its folders here, 3 that list names no
rem folder of SteamVR, 4 there is no vrpathreg.exe in it, 5 vrpathreg.exe failed, 6 the driver is in use, 7 done, but
rem SteamVR loads another copy.
rem
rem No call: it would expand the path twice.
"%~dp0check.cmd" --install %*
