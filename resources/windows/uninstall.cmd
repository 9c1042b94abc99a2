@echo off
rem Makes SteamVR forget the driver in this folder: uninstall.cmd [/quiet]
rem Exit codes as of install.cmd. No call: it would expand the path twice.
"%~dp0check.cmd" --uninstall %*
