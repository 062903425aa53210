# The catalogue of the emoji palette, made while building from Unicode's own lists: sets
# TEMBRA_EMOJI_RESOURCE to the source file that carries it.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

find_path(TEMBRA_UNICODE_DATA emoji/emoji-test.txt
    PATHS /usr/share/unicode /usr/local/share/unicode /opt/homebrew/share/unicode NO_DEFAULT_PATH
    DOC "The folder with emoji/emoji-test.txt and cldr/common/annotations")
if(NOT TEMBRA_UNICODE_DATA OR NOT EXISTS "${TEMBRA_UNICODE_DATA}/emoji/emoji-test.txt")
    message(FATAL_ERROR
        "Unicode's list of emoji (emoji/emoji-test.txt) was not found. Please install the package "
        "\"unicode-data\" (Debian, Ubuntu) or \"unicode-emoji\" (Fedora, Arch), or set "
        "TEMBRA_UNICODE_DATA to the folder that holds emoji/emoji-test.txt.")
endif()

# English, and each language that the program's texts come in.
set(emoji_languages en)
file(GLOB catalogues CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/translations/tembra_*.ts")
foreach(catalogue ${catalogues})
    string(REGEX REPLACE "^.*/tembra_(.*)\\.ts$" "\\1" language "${catalogue}")
    list(APPEND emoji_languages "${language}")
endforeach()
list(REMOVE_DUPLICATES emoji_languages)

set(emoji_script "${CMAKE_CURRENT_LIST_DIR}/make_emoji_catalogue.py")
set(emoji_sources "${emoji_script}" "${TEMBRA_UNICODE_DATA}/emoji/emoji-test.txt")
set(emoji_annotations "${TEMBRA_UNICODE_DATA}/cldr/common")
if(EXISTS "${emoji_annotations}/annotations/en.xml")
    foreach(language ${emoji_languages})
        # A file of "pt_BR" may only tell what differs from "pt".
        string(REGEX REPLACE "_.*$" "" parent "${language}")
        file(GLOB files "${emoji_annotations}/annotations*/${parent}.xml"
            "${emoji_annotations}/annotations*/${language}.xml")
        list(APPEND emoji_sources ${files})
    endforeach()
    list(REMOVE_DUPLICATES emoji_sources)
    set(emoji_options --annotations "${emoji_annotations}")
else()
    set(emoji_options)
    message(STATUS "No CLDR annotations in ${TEMBRA_UNICODE_DATA}: the emoji palette knows English "
        "names only. The package \"unicode-cldr-core\" (Debian, Ubuntu) brings keywords and "
        "other languages.")
endif()

set(emoji_folder "${CMAKE_CURRENT_BINARY_DIR}/emoji")
set(TEMBRA_EMOJI_RESOURCE "${emoji_folder}/emoji_catalogue.cpp")
add_custom_command(
    OUTPUT "${TEMBRA_EMOJI_RESOURCE}"
    COMMAND "${Python3_EXECUTABLE}" "${emoji_script}"
        --emoji-test "${TEMBRA_UNICODE_DATA}/emoji/emoji-test.txt" ${emoji_options}
        --output "${emoji_folder}" ${emoji_languages}
    COMMAND Qt6::rcc --name emoji_catalogue --output "${TEMBRA_EMOJI_RESOURCE}"
        "${emoji_folder}/emoji_catalogue.qrc"
    DEPENDS ${emoji_sources}
    COMMENT "Making the catalogue of emoji"
    VERBATIM)
set_source_files_properties("${TEMBRA_EMOJI_RESOURCE}" PROPERTIES SKIP_AUTOGEN ON)
