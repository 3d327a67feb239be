# Run by `cmake --install`: writes a systemd unit from its template with the
# programs' paths under the prefix being installed to (the --prefix given now,
# not only the one configured), then installs it. Expects UNIT_TEMPLATE,
# UNIT_NAME, UNIT_BINDIR and UNIT_DESTINATION (relative to the prefix) and
# the scratch folder UNIT_WORK.
if(IS_ABSOLUTE "${UNIT_BINDIR}")
  set(CMAKE_INSTALL_FULL_BINDIR "${UNIT_BINDIR}")
else()
  set(CMAKE_INSTALL_FULL_BINDIR "${CMAKE_INSTALL_PREFIX}/${UNIT_BINDIR}")
endif()
configure_file("${UNIT_TEMPLATE}" "${UNIT_WORK}/${UNIT_NAME}" @ONLY)
file(INSTALL "${UNIT_WORK}/${UNIT_NAME}" DESTINATION "${CMAKE_INSTALL_PREFIX}/${UNIT_DESTINATION}")
