# The local service's own certificate, made at build time for this machine only. The program
# contains it as a trust anchor.
include_guard()

set(AULORA_LOCAL_CERTIFICATE ${CMAKE_BINARY_DIR}/certificate/localhost.pem)
set(AULORA_LOCAL_KEY ${CMAKE_BINARY_DIR}/certificate/localhost.key)
set(AULORA_SERVICE_CA_FILE ${AULORA_LOCAL_CERTIFICATE} CACHE STRING
    "PEM trusted besides the system's roots; empty for a release")

# 825 days is the longest validity that macOS accepts for a server certificate.
add_custom_command(
  OUTPUT ${AULORA_LOCAL_CERTIFICATE} ${AULORA_LOCAL_KEY}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/certificate
  COMMAND
    ${OPENSSL_PROGRAM} req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -noenc -days 825
    -subj "/CN=Aulora IA local" -addext "subjectAltName=DNS:localhost,IP:127.0.0.1,IP:::1" -addext
    "extendedKeyUsage=serverAuth" -keyout ${AULORA_LOCAL_KEY} -out ${AULORA_LOCAL_CERTIFICATE}
  COMMENT "Making the local service's certificate"
  VERBATIM)
add_custom_target(aulora_local_certificate ALL DEPENDS ${AULORA_LOCAL_CERTIFICATE}
                                                       ${AULORA_LOCAL_KEY})
