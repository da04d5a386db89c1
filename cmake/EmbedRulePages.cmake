# Writes OUTPUT, a C++ source with the pages of the folders PAGES and COMPARISON as texts: what `velhls explain` prints.
file(GLOB pages ${PAGES}/*.md ${COMPARISON}/*.md)
list(SORT pages)
set(rows "")
foreach(page IN LISTS pages)
    get_filename_component(id ${page} NAME_WE)
    if(NOT id STREQUAL "README")
        file(READ ${page} text)
        string(APPEND rows "    {\"${id}\", R\"page(${text})page\"},\n")
    endif()
endforeach()
set(source "#include \"tool/RulePages.h\"

namespace tool {
namespace {

struct Page {
    const char* id;
    const char* text;
};

constexpr Page pages[] = {
${rows}};

}  // namespace

std::string_view pageOf(std::string_view ruleId) {
    for (const Page& page : pages) {
        if (page.id == ruleId) return page.text;
    }
    return {};
}

}  // namespace tool
")
file(WRITE ${OUTPUT} "${source}")
