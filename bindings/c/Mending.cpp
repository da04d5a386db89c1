// Mending whole texts.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Calls.h"
#include "Findings.h"

using velhls_c::give;
using velhls_c::guarded;
using velhls_c::stringOf;
using velhls_c::viewOf;

struct velhls_mended {
    std::string text;
    std::vector<VELHLSEdit> edits;
    std::vector<VELHLSFixes::Done> done;
    std::size_t rounds;
    velhls_report left;
};

namespace {

/// Stores what mending answered.
velhls_status giveMended(VELHLSFixes::Result result, velhls_mended** mended) {
    *mended = new velhls_mended{std::move(result.text), std::move(result.edits), std::move(result.done),
                                result.rounds, velhls_c::reportOf(std::move(result.left))};
    return VELHLS_OK;
}

}  // namespace

velhls_status velhls_fix_text(const char* text, size_t length, const velhls_fix_options* options,
                              velhls_mended** mended) {
    if (!velhls_c::clear(mended) || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    if (options != nullptr && options->size < sizeof(velhls_fix_options)) return VELHLS_INVALID_ARGUMENT;
    return guarded([&]() -> velhls_status {
        VELHLSFixes::Options asked;
        if (options != nullptr) {
            if (!velhls_c::ask(asked, options->profiles, options->kind)) return VELHLS_INVALID_ARGUMENT;
            asked.lossy = options->lossy != 0;
            asked.guess = options->guess != 0;
        }
        return giveMended(VELHLSFixes::apply(viewOf(text, length), asked), mended);
    });
}

velhls_status velhls_fix_for_models(const char* text, size_t length, velhls_mended** mended) {
    if (!velhls_c::clear(mended) || !velhls_c::isText(text, length)) return VELHLS_INVALID_ARGUMENT;
    return guarded([&] { return giveMended(VELHLSFixes::forModels(viewOf(text, length)), mended); });
}

void velhls_mended_free(velhls_mended* mended) {
    delete mended;
}

const char* velhls_mended_data(const velhls_mended* mended) {
    return mended == nullptr ? nullptr : mended->text.data();
}

size_t velhls_mended_length(const velhls_mended* mended) {
    return mended == nullptr ? 0 : mended->text.size();
}

size_t velhls_mended_rounds(const velhls_mended* mended) {
    return mended == nullptr ? 0 : mended->rounds;
}

size_t velhls_mended_edit_count(const velhls_mended* mended) {
    return mended == nullptr ? 0 : mended->edits.size();
}

velhls_status velhls_mended_edit(const velhls_mended* mended, size_t index, velhls_edit* edit) {
    if (mended == nullptr || edit == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (index >= mended->edits.size()) return VELHLS_OUT_OF_RANGE;
    return give(velhls_c::editOf(mended->edits[index]), edit);
}

size_t velhls_mended_done_count(const velhls_mended* mended) {
    return mended == nullptr ? 0 : mended->done.size();
}

velhls_status velhls_mended_done(const velhls_mended* mended, size_t index, velhls_done* done) {
    if (mended == nullptr || done == nullptr) return VELHLS_INVALID_ARGUMENT;
    if (index >= mended->done.size()) return VELHLS_OUT_OF_RANGE;
    const VELHLSFixes::Done& known = mended->done[index];
    velhls_done value = {};
    value.rule = stringOf(known.ruleId);
    value.profile = stringOf(known.profile);
    value.fix_class = known.fixClass;
    value.sentence = stringOf(known.sentence);
    value.line = known.line;
    return give(value, done);
}

const velhls_report* velhls_mended_left(const velhls_mended* mended) {
    return mended == nullptr ? nullptr : &mended->left;
}
