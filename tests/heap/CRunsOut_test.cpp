// Whichever allocation fails in a call from C, it gives VELHLS_OUT_OF_MEMORY and makes nothing, or does what it does with
// enough memory; nothing is lost.
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/heap/Heap.h"
#include "velhls.h"

namespace {

/// Calls with memory for no allocation, for one, and so on until all are made. The call gives its status, and frees what it
/// made with all the memory there is.
void runOutOfMemory(const std::function<velhls_status(bool& made)>& call) {
    for (const heap::Failure failure : {heap::Failure::once, heap::Failure::fromThereOn}) {
        bool happened = true;
        for (std::size_t granted = 0; happened; ++granted) {
            const std::size_t blocks = heap::blocksInUse();
            bool made = false;
            velhls_status status = VELHLS_OK;
            {
                const heap::RunsOut memory(granted, failure);
                status = call(made);
                happened = memory.happened();
            }
            ASSERT_EQ(status, made ? VELHLS_OK : VELHLS_OUT_OF_MEMORY)
                << "after " << granted << " allocations";
            ASSERT_EQ(heap::blocksInUse(), blocks) << "after " << granted << " allocations";
        }
    }
}

/// A call that makes a handle, which is freed.
template <typename Handle, typename Make>
std::function<velhls_status(bool&)> making(void (*release)(Handle*), Make make) {
    return [release, make](bool& made) {
        Handle* handle = nullptr;
        const velhls_status status = make(&handle);
        made = handle != nullptr;
        release(handle);
        return status;
    };
}

class COutOfMemory : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(velhls_document_new(text_.data(), text_.size(), &document_), VELHLS_OK);
        ASSERT_EQ(velhls_media_parse(text_.data(), text_.size(), &media_, nullptr), VELHLS_OK);
    }

    void TearDown() override {
        velhls_media_free(media_);
        velhls_document_free(document_);
    }

    const std::string text_ =
        "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXT-X-DEFINE:NAME=\"a-name-that-takes-memory\",VALUE=\"1\"\n"
        "#EXT-X-KEY:METHOD=AES-128,URI=\"https://keys.example.com/1\"\n#EXTINF:4,\n"
        "a-segment-with-a-long-name-1.ts\n#EXTINF:5,\na-segment-with-a-long-name-2.ts\n";
    velhls_document* document_ = nullptr;
    velhls_media* media_ = nullptr;
};

TEST_F(COutOfMemory, IsAStatusOfWhatIsMadeOfATextOrADocument) {
    const char* const data = text_.data();
    const std::size_t length = text_.size();
    const velhls_document* const document = document_;
    runOutOfMemory(
        making(velhls_document_free, [&](auto out) { return velhls_document_new(data, length, out); }));
    runOutOfMemory(
        making(velhls_media_free, [&](auto out) { return velhls_media_parse(data, length, out, nullptr); }));
    runOutOfMemory(making(velhls_media_free,
                          [&](auto out) { return velhls_media_parse_document(document, out, nullptr); }));
    velhls_check_options checking = VELHLS_INIT(velhls_check_options);
    checking.profiles = 15;
    checking.kind = VELHLS_KIND_MEDIA;
    runOutOfMemory(
        making(velhls_report_free, [&](auto out) { return velhls_check(data, length, &checking, out); }));
    runOutOfMemory(
        making(velhls_attributes_free, [&](auto out) { return velhls_attributes_new(document, 4, out); }));
    runOutOfMemory(making(velhls_uris_free, [&](auto out) { return velhls_uris_new(document, out); }));
    runOutOfMemory(
        making(velhls_structure_free, [&](auto out) { return velhls_structure_new(document, out); }));
    runOutOfMemory(making(velhls_comparison_free,
                          [&](auto out) { return velhls_compare(document, document, -1, out); }));
}

TEST_F(COutOfMemory, IsAStatusOfWhatIsMended) {
    const std::string text = "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\n0.ts\n#EXTINF:0,\nsegment1.ts\n";
    velhls_check_options checking = VELHLS_INIT(velhls_check_options);
    checking.profiles = VELHLS_PROFILE_LIBRARY;
    checking.fixes = 1;
    runOutOfMemory(making(velhls_report_free,
                          [&](auto out) { return velhls_check(text.data(), text.size(), &checking, out); }));
    velhls_fix_options mending = VELHLS_INIT(velhls_fix_options);
    mending.profiles = VELHLS_PROFILE_LIBRARY;
    runOutOfMemory(making(velhls_mended_free, [&](auto out) {
        return velhls_fix_text(text.data(), text.size(), &mending, out);
    }));
    runOutOfMemory(making(velhls_mended_free,
                          [&](auto out) { return velhls_fix_for_models(text.data(), text.size(), out); }));
}

TEST_F(COutOfMemory, IsAStatusOfAMasterPlaylist) {
    const std::string text =
        "#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"group\",NAME=\"A name that is rather long\"\n"
        "#EXT-X-STREAM-INF:BANDWIDTH=1,AUDIO=\"group\"\na-variant-with-a-long-name.m3u8\n";
    runOutOfMemory(making(velhls_master_free, [&](auto out) {
        return velhls_master_parse(text.data(), text.size(), out, nullptr);
    }));
    velhls_master* master = nullptr;
    ASSERT_EQ(velhls_master_parse(text.data(), text.size(), &master, nullptr), VELHLS_OK);
    runOutOfMemory(making(velhls_text_free, [&](auto out) { return velhls_master_render(master, out); }));
    velhls_master_free(master);
}

TEST_F(COutOfMemory, IsAStatusOfWhatIsWritten) {
    std::vector<std::size_t> ends(2);
    runOutOfMemory(making(velhls_text_free, [&](auto out) { return velhls_media_render(media_, out); }));
    runOutOfMemory(making(velhls_text_free,
                          [&](auto out) { return velhls_media_write(media_, nullptr, out, nullptr); }));
    runOutOfMemory(making(velhls_text_free, [&](auto out) {
        return velhls_media_joined_uris(media_, 0, ends.size(), out, ends.data());
    }));
}

TEST_F(COutOfMemory, IsAStatusOfARejection) {
    const std::string text = "#EXTM3U\n#EXTINF:4,\n#EXT-X-A-TAG-THAT-NOBODY-KNOWS:AND-A-VALUE\nsegment1.ts\n";
    // The error is what is made: without memory for it there is no rejection to tell of.
    runOutOfMemory([&](bool& made) {
        velhls_media* media = nullptr;
        velhls_error* error = nullptr;
        const velhls_status status = velhls_media_parse(text.data(), text.size(), &media, &error);
        made = error != nullptr;
        velhls_error_free(error);
        return status == VELHLS_REJECTED && media == nullptr ? velhls_status{VELHLS_OK} : status;
    });
}

TEST_F(COutOfMemory, LeavesEditsAsTheyWere) {
    velhls_edits* edits = nullptr;
    ASSERT_EQ(velhls_edits_new(document_, &edits), VELHLS_OK);
    std::size_t expected = 0;
    for (std::size_t granted = 0; expected == 0; ++granted) {
        const heap::RunsOut memory(granted, heap::Failure::fromThereOn);
        const velhls_status status =
            velhls_edits_insert_before(edits, 3, "# a comment that takes memory", 29);
        if (status == VELHLS_OK) expected = 1;
        ASSERT_EQ(status, expected == 1 ? VELHLS_OK : VELHLS_OUT_OF_MEMORY);
        ASSERT_EQ(velhls_edits_count(edits), expected);
    }
    runOutOfMemory(
        making(velhls_text_free, [&](auto out) { return velhls_edits_apply(edits, out, nullptr); }));
    velhls_edits_free(edits);
}

}  // namespace
