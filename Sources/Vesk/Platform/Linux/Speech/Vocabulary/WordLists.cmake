cmake_minimum_required(VERSION 3.25)

# Writes OUTPUT, a source file with two sorted lists, from the SCOWL lists in the folder SCOWL. Size 60 is what a careful
# spelling dictionary holds; the larger sizes are words that people look up, and a recogniser seldom writes.
set(sizes 10 20 35 40 50 55 60)
set(regions english american british)

# What has accents is compared without them. The lists are Latin-1: bytes, not characters.
set(accents "224=a" "225=a" "226=a" "228=a" "229=a" "231=c" "232=e" "233=e" "234=e" "235=e" "237=i" "238=i" "239=i"
            "241=n" "243=o" "244=o" "246=o" "248=o" "249=u" "250=u" "251=u" "252=u")

function(read_words variable pattern)
    set(words "")
    foreach(kind IN LISTS ARGN)
        foreach(region IN LISTS regions)
            foreach(size IN LISTS sizes)
                if(EXISTS "${SCOWL}/${region}-${kind}.${size}")
                    file(READ "${SCOWL}/${region}-${kind}.${size}" text)
                    string(APPEND words "${text}\n")
                endif()
            endforeach()
        endforeach()
    endforeach()
    foreach(accent IN LISTS accents)
        string(REGEX MATCH "^([0-9]+)=(.)$" _ "${accent}")
        string(ASCII ${CMAKE_MATCH_1} byte)
        string(REPLACE "${byte}" "${CMAKE_MATCH_2}" words "${words}")
    endforeach()
    string(REPLACE "\n" ";" words "${words}")
    list(FILTER words INCLUDE REGEX "${pattern}")
    list(TRANSFORM words TOLOWER)
    list(SORT words)
    list(REMOVE_DUPLICATES words)
    list(LENGTH words count)
    if(count LESS 1000)
        message(FATAL_ERROR "Only ${count} words of the kind ${ARGN} in ${SCOWL}")
    endif()
    list(JOIN words "\\n\"\n    \"" words)
    set(${variable} "\"${words}\\n\"" PARENT_SCOPE)
endfunction()

read_words(ordinary "^[a-z]+$" words)
read_words(names "^[A-Z][a-z]+$" upper proper-names)

file(WRITE "${OUTPUT}" "#include \"Platform/Linux/Speech/Vocabulary/WordLists.h\"

namespace vesk::WordLists {

namespace {

constexpr char OrdinaryText[] =
    ${ordinary};

constexpr char NamesText[] =
    ${names};

} // namespace

// With their sizes: measured by the compiler, the literals are longer than it is willing to count.
constinit const std::string_view Ordinary(OrdinaryText, sizeof OrdinaryText - 1);
constinit const std::string_view Names(NamesText, sizeof NamesText - 1);

} // namespace vesk::WordLists
")
