# Makes one file of the page's sources and the chart library, with the marker for a report left in it:
#   cmake -DUPLOT=<folder> -DOUT=<file> -P make_template.cmake
set(here "${CMAKE_CURRENT_LIST_DIR}")
if(NOT EXISTS "${UPLOT}/LICENSE")
  message(FATAL_ERROR "No chart library in ${UPLOT}. Run tools/fetch_uplot.sh, or name its folder with -DOMBREL_UPLOT_DIR=...")
endif()

set(scripts "")
foreach(name elements tables distribution charts figures page)
  file(READ "${here}/${name}.js" script)
  string(APPEND scripts "${script}")
endforeach()
file(READ "${here}/page.css" page_css)
file(READ "${UPLOT}/uPlot.iife.min.js" uplot_js)
file(READ "${UPLOT}/uPlot.min.css" uplot_css)
file(READ "${UPLOT}/LICENSE" uplot_license)
file(READ "${here}/page.html" page)

# Replaced as text: a configured file would lose what looks like a variable in a script.
foreach(part "UPLOT_LICENSE;uplot_license" "UPLOT_CSS;uplot_css" "PAGE_CSS;page_css" "UPLOT_JS;uplot_js" "PAGE_JS;scripts")
  list(GET part 0 marker)
  list(GET part 1 variable)
  if("${${variable}}" MATCHES "</script|</style|-->|@REPORT_JSON@")
    message(FATAL_ERROR "${variable} ends the element that it is put into, or has the report's marker")
  endif()
  string(REPLACE "@${marker}@" "${${variable}}" page "${page}")
endforeach()
file(WRITE "${OUT}" "${page}")
