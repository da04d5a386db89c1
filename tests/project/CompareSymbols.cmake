# Fails unless the shared LIBRARY hands out exactly the names with the symbol version VERSION that the file EXPECTED
# lists. NM is the nm to ask. With UPDATE the list is written anew instead.
execute_process(COMMAND ${NM} --dynamic --demangle --defined-only --with-symbol-versions --format=just-symbols ${LIBRARY}
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >" "std::string"
    output "${output}")
string(REPLACE "std::basic_string_view<char, std::char_traits<char> >" "std::string_view" output "${output}")
string(CONCAT define_map "std::unordered_map<std::string, std::string, std::hash<std::string >, "
    "std::equal_to<std::string >, std::allocator<std::pair<std::string const, std::string > > >")
string(REPLACE "${define_map}" "VELHLSDefineMap" output "${output}")
string(REPLACE "[abi:cxx11]" "" output "${output}")
string(REGEX REPLACE "\n$" "" output "${output}")
string(REPLACE "\n" ";" symbols "${output}")
# Without the names of the versions themselves.
string(REPLACE "." "\\." version_pattern "${VERSION}")
list(FILTER symbols INCLUDE REGEX "@@?${version_pattern}$")
list(TRANSFORM symbols REPLACE "@@?${version_pattern}$" "")
list(REMOVE_ITEM symbols "${VERSION}")
list(SORT symbols)
list(REMOVE_DUPLICATES symbols)

if(UPDATE)
    list(JOIN symbols "\n" text)
    file(WRITE ${EXPECTED} "${text}\n")
    return()
endif()

file(STRINGS ${EXPECTED} expected)
set(added ${symbols})
list(REMOVE_ITEM added ${expected})
set(missing ${expected})
list(REMOVE_ITEM missing ${symbols})
foreach(symbol IN LISTS added)
    message(NOTICE "handed out, and not in the list: ${symbol}")
endforeach()
foreach(symbol IN LISTS missing)
    message(NOTICE "in the list, and not handed out: ${symbol}")
endforeach()
if(added OR missing)
    get_filename_component(name ${EXPECTED} NAME_WE)
    message(FATAL_ERROR "the names of ${VERSION} changed (see docs/stability.md); "
        "after a change that is meant, make the list anew with the target update_${name}")
endif()
