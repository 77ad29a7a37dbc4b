# What a Debian package has besides what is installed everywhere; run by CPack on its staged files.
if(NOT CPACK_GENERATOR STREQUAL DEB)
    return()
endif()
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(doc ${share}/doc/fleetwise)

function(stage source folder name)
    file(MAKE_DIRECTORY ${folder})
    configure_file(${source} ${folder}/${name} COPYONLY)
endfunction()

# The manual wants them as small as they get, and the same at each build.
function(compress)
    execute_process(COMMAND gzip -9n ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

stage(${CPACK_FLEETWISE_PACKAGING}/copyright ${doc} copyright)
stage(${CPACK_FLEETWISE_PACKAGING}/lintian-overrides ${share}/lintian/overrides fleetwise)
execute_process(
    COMMAND ${CPACK_FLEETWISE_PACKAGING}/changelog ${CPACK_FLEETWISE_CHANGES}
            ${CPACK_PACKAGE_VERSION} ${CPACK_PACKAGE_CONTACT}
    OUTPUT_FILE ${doc}/changelog COMMAND_ERROR_IS_FATAL ANY)
# Debian's zsh leaves the usual folder to the administrator.
file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
file(GLOB manuals ${share}/man/man1/*.1)
compress(${doc}/changelog ${manuals})
