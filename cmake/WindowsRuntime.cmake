# Windows: Qt, the plugins Varno loads and the MinGW runtime sit beside the executables,
# both in the build (so bin/ runs in place, under Wine too) and in the installed folder,
# which is also Varno's application folder.

get_filename_component(VARNO_QT_PREFIX "${Qt6_DIR}/../../.." ABSOLUTE)
set(VARNO_WIN_DLLS
  ${VARNO_QT_PREFIX}/bin/Qt6Core.dll
  ${VARNO_QT_PREFIX}/bin/Qt6Gui.dll
  ${VARNO_QT_PREFIX}/bin/Qt6Widgets.dll)
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
                  OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE "${path}" OR NOT EXISTS "${path}")
    message(FATAL_ERROR "The MinGW runtime library ${dll} was not found")
  endif()
  list(APPEND VARNO_WIN_DLLS ${path})
endforeach()
set(VARNO_WIN_PLUGINS
  platforms/qwindows.dll
  styles/qwindowsvistastyle.dll
  imageformats/qgif.dll
  imageformats/qico.dll
  imageformats/qjpeg.dll)

set(copy_commands
  COMMAND ${CMAKE_COMMAND} -E copy_if_different ${VARNO_WIN_DLLS} ${VARNO_QT_PREFIX}/bin/Qt6Test.dll
          ${CMAKE_BINARY_DIR}/bin)
foreach(p ${VARNO_WIN_PLUGINS})
  get_filename_component(dir ${p} DIRECTORY)
  list(APPEND copy_commands
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/bin/${dir}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${VARNO_QT_PREFIX}/plugins/${p} ${CMAKE_BINARY_DIR}/bin/${dir})
endforeach()
add_custom_target(windows_runtime ALL ${copy_commands} COMMENT "Copying Qt and the MinGW runtime beside the executables")

# The installed folder: what the installer and the zip hold. Qt6Test.dll is for the tests only.
install(TARGETS Varno varno-cli RUNTIME DESTINATION .)
install(FILES ${VARNO_WIN_DLLS} DESTINATION .)
foreach(p ${VARNO_WIN_PLUGINS})
  get_filename_component(dir ${p} DIRECTORY)
  install(FILES ${VARNO_QT_PREFIX}/plugins/${p} DESTINATION ${dir})
endforeach()
foreach(d ${VARNO_DATA_DIRS})
  install(DIRECTORY ${CMAKE_SOURCE_DIR}/${d} DESTINATION . PATTERN .gitkeep EXCLUDE)
endforeach()
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION .)
