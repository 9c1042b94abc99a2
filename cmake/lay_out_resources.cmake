# Lays out all of the driver's folder but the library: cmake -DRESOURCES=<resources/> -DROOT=<folder> -P ...
# Files that are no longer among the resources go away; those that have not changed are left alone.

file(GLOB_RECURSE shipped RELATIVE "${RESOURCES}"
  "${RESOURCES}/driver.vrresources" "${RESOURCES}/settings/*" "${RESOURCES}/input/*"
  "${RESOURCES}/localization/*" "${RESOURCES}/icons/*")
file(GLOB_RECURSE present RELATIVE "${ROOT}/resources" "${ROOT}/resources/*")
list(REMOVE_ITEM present ${shipped})
foreach(file ${present})
  file(REMOVE "${ROOT}/resources/${file}")
endforeach()
foreach(file ${shipped})
  configure_file("${RESOURCES}/${file}" "${ROOT}/resources/${file}" COPYONLY)
endforeach()

configure_file("${RESOURCES}/driver.vrdrivermanifest" "${ROOT}/driver.vrdrivermanifest" COPYONLY)

# cmd.exe misses labels in files without carriage returns.
foreach(script install.cmd uninstall.cmd)
  configure_file("${RESOURCES}/windows/${script}" "${ROOT}/${script}" @ONLY NEWLINE_STYLE CRLF)
endforeach()
