# Writes OUTPUT, a C++ source with the pages of the folders STANDARD, COMPARISON and LIBRARY as texts: what `velhls explain` prints.
function(read_pages rows folder)
    file(GLOB pages ${folder}/*.md)
    list(SORT pages)
    set(read "")
    foreach(page IN LISTS pages)
        get_filename_component(id ${page} NAME_WE)
        if(NOT id STREQUAL "README")
            file(READ ${page} text)
            string(APPEND read "    {\"${id}\", R\"page(${text})page\"},\n")
        endif()
    endforeach()
    set(${rows} "${read}" PARENT_SCOPE)
endfunction()

read_pages(standard ${STANDARD})
read_pages(comparison ${COMPARISON})
read_pages(library ${LIBRARY})
set(source "#include \"tool/RulePages.h\"

namespace tool {
namespace {

struct Page {
    std::string_view id;
    std::string_view text;
};

constexpr Page standardPages[] = {
${standard}${comparison}};

constexpr Page libraryPages[] = {
${library}};

template <std::size_t count>
std::string_view textOf(const Page (&pages)[count], std::string_view id) {
    for (const Page& page : pages) {
        if (page.id == id) return page.text;
    }
    return {};
}

}  // namespace

std::string_view pageOfStandard(std::string_view ruleId) {
    return textOf(standardPages, ruleId);
}

std::string_view pageOfLibrary(std::string_view ruleId) {
    return textOf(libraryPages, ruleId);
}

}  // namespace tool
")
file(WRITE ${OUTPUT} "${source}")
