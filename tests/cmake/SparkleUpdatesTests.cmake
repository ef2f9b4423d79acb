# Whether the application is built with updates on, for each kind of
# configuration. Run: cmake -P tests/cmake/SparkleUpdatesTests.cmake
include("${CMAKE_CURRENT_LIST_DIR}/../../cmake/SparkleUpdates.cmake")

set(failures 0)
# The base64 text of 32 bytes, as an Ed25519 public key is (44 characters, one "=").
set(key "pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9BamQ=")
set(framework "/Frameworks/Sparkle.framework")
set(feed "https://example.org/appcast.xml")

function(expect name framework feed key on why error)
    halvora_sparkle_updates("${framework}" "${feed}" "${key}" got_on got_why got_error)
    if(NOT "${got_on}" STREQUAL "${on}" OR NOT "${got_why}" MATCHES "${why}" OR NOT "${got_error}" MATCHES "${error}"
       OR (error STREQUAL "" AND NOT got_error STREQUAL ""))
        message(SEND_ERROR "${name}: got on=${got_on}, why='${got_why}', error='${got_error}'")
    else()
        message(STATUS "ok: ${name}")
    endif()
endfunction()

expect(UpdatesAreOnWithAFrameworkAFeedAndA32ByteKey "${framework}" "${feed}" "${key}" ON "^on: " "")
expect(AKeyWithSurroundingSpaceIsTakenAsItsText "${framework}" "${feed}" "  ${key}\n" ON "^on: " "")
expect(UpdatesAreOffWithoutAKey "${framework}" "${feed}" "" OFF "no EdDSA public key" "")
expect(UpdatesAreOffWithOnlySpacesForAKey "${framework}" "${feed}" "   " OFF "no EdDSA public key" "")
expect(UpdatesAreOffWithoutAFeed "${framework}" "" "${key}" OFF "no appcast" "")
expect(UpdatesAreOffWithoutTheFramework "" "${feed}" "${key}" OFF "no Sparkle.framework" "")
expect(AKeyOf31BytesStopsTheConfiguration "${framework}" "${feed}" "pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9Bam==" OFF ""
       "decodes to 31 bytes")
expect(AKeyOf33BytesStopsTheConfiguration "${framework}" "${feed}" "pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9BamQA" OFF ""
       "decodes to 33 bytes")
expect(APrivateKeyGivenByMistakeStopsTheConfiguration "${framework}" "${feed}"
       "pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9BamSl8hKFTh0Reo93k5tg18MGJBZxejOTt6y3DNOcX0FqZA==" OFF ""
       "decodes to 64 bytes")
expect(AKeyThatIsNotBase64StopsTheConfiguration "${framework}" "${feed}" "pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9Bam-=" OFF ""
       "not base64 text")
expect(AKeyCutShortStopsTheConfiguration "${framework}" "${feed}" "pfIShU4dEXqPd5ObYNfDBiQWcXozk7estwzTnF9Bam" OFF ""
       "groups of four characters; this has 42")
expect(AnUnusableKeyStopsTheConfigurationEvenWithoutTheFramework "" "${feed}" "not a key" OFF ""
       "not base64 text")
