// What looks at texts: findings, comparisons and documents.
#include "Common.h"

namespace velhls_python {

namespace {

using Finding = VELHLSFinding;
using Related = VELHLSRelatedPlace;
using Change = VELHLSChange;
using Edit = VELHLSEdit;
using Fix = VELHLSFix;
using Done = VELHLSFixes::Done;

/// A text as what it was made of: str or bytes.
py::object textLike(bool isBytes, std::string_view text) {
    return isBytes ? py::object(py::bytes(text.data(), text.size())) : py::object(strOf(text));
}

/// A document that Python holds; lines and attributes hold it too. `isBytes` when it was made of bytes.
struct Document {
    VELHLSDocument document;
    bool isBytes;

    [[nodiscard]] py::object textOf(std::string_view text) const { return textLike(isBytes, text); }
};

struct Line {
    std::shared_ptr<Document> owner;
    VELHLSLine line;
};

struct Attribute {
    std::shared_ptr<Document> owner;
    VELHLSAttribute attribute;
    std::size_t column;
};

struct Uri {
    std::shared_ptr<Document> owner;
    VELHLSUri uri;
};

/// What VELHLSDiagnostics answers, with lists that Python has.
struct Report {
    VELHLSDiagnostics::PlaylistKind kind;
    std::vector<Finding> findings;
    std::optional<VELHLSReason> rejected;

    explicit Report(VELHLSDiagnostics::Report&& answer)
        : kind(answer.kind), findings(std::move(answer.findings)), rejected(std::move(answer.rejected)) {}
};

/// What VELHLSFixes answers, of str or of bytes.
struct Mended {
    std::string text;
    bool isBytes;
    std::vector<Edit> edits;
    std::vector<Done> done;
    std::size_t rounds;
    Report left;
};

const char* kindText(std::int32_t kind) {
    if (kind == VELHLSDiagnostics::Master) return "master";
    return kind == VELHLSDiagnostics::Media ? "media" : "";
}

VELHLSDiagnostics::PlaylistKind kindNamed(const std::string& text) {
    if (text.empty()) return VELHLSDiagnostics::Detect;
    if (text == "master") return VELHLSDiagnostics::Master;
    if (text == "media") return VELHLSDiagnostics::Media;
    throw py::value_error("expected the kind master or media, seen " + text);
}

std::vector<VELHLSDiagnostics::Profile> profilesNamed(const std::vector<std::string>& names) {
    std::vector<VELHLSDiagnostics::Profile> profiles;
    for (const std::string& name : names) {
        const auto profile = VELHLSDiagnostics::profileNamed(name);
        if (!profile) throw py::value_error("expected rfc8216, rfc8216bis, apple or library, seen " + name);
        profiles.push_back(*profile);
    }
    return profiles;
}

const char* lineKindText(VELHLSLine::Kind kind) {
    switch (kind) {
        case VELHLSLine::Uri:
            return "uri";
        case VELHLSLine::Comment:
            return "comment";
        case VELHLSLine::Tag:
            return "tag";
        default:
            return "blank";
    }
}

void defFindings(py::module_& module) {
    py::class_<Related> related(module, "RelatedPlace", "A second place that a finding speaks of.");
    defReadText(related, "uri", &Related::uri,
                "The text that it is in; empty for that of the finding itself.");
    related.def_readonly("line", &Related::line, "Counted from 1.");
    related.def_readonly("column", &Related::column, "The byte in that line, counted from 1.");
    related.def_readonly("length", &Related::length, "The number of bytes; 0 where something is missing.");
    defReadText(related, "message", &Related::message, "What stands there, in a few words.");

    py::class_<Finding> finding(module, "Finding", "One thing that is wrong with a playlist, and where.");
    finding.def_property_readonly(
        "severity", [](const Finding& found) { return strOf(Finding::textOf(found.severity)); },
        "\"error\", \"warning\" or \"note\".");
    defReadText(finding, "rule", &Finding::ruleId, "The stable name of the rule.");
    finding.def_readonly("line", &Finding::line, "Counted from 1.");
    finding.def_readonly("column", &Finding::column, "The byte in that line, counted from 1.");
    finding.def_readonly("length", &Finding::length, "The number of bytes; 0 where something is missing.");
    defReadText(finding, "message", &Finding::message, "What was expected, and what was seen.");
    defReadText(finding, "source", &Finding::source, "Where the rule comes from.");
    defReadText(finding, "profile", &Finding::profile, "By whose rules: \"rfc8216\", for one.");
    defReadText(finding, "clause", &Finding::clause, "\"4.3.2.1\"; empty where there is none.");
    defReadText(finding, "level", &Finding::level, "\"MUST\", \"SHOULD\"…; empty where there is no clause.");
    finding.def_readonly("related", &Finding::related, "The other places that it speaks of, a copy.");
    finding.def_readonly(
        "fixes", &Finding::fixes,
        "What mends it, the best first, a copy; empty unless the check was asked for fixes.");
    finding.def_readonly("suppressed", &Finding::suppressed,
                         "How many more findings of this rule are not listed.");

    py::class_<VELHLSReason> reason(module, "Reason", "Why the models reject a playlist, and where.");
    defReadText(reason, "rule", &VELHLSReason::ruleId, "The name of the rule that was broken.");
    reason.def_readonly("line", &VELHLSReason::line, "Counted from 1.");
    reason.def_readonly("column", &VELHLSReason::column, "The byte in that line, counted from 1.");
    reason.def_readonly("length", &VELHLSReason::length,
                        "The number of bytes; 0 where something is missing.");
    defReadText(reason, "message", &VELHLSReason::message, "What was expected, and what was seen.");

    py::class_<Report>(module, "Report", "What a check answers.")
        .def_property_readonly(
            "kind", [](const Report& report) { return kindText(report.kind); },
            "What the text was read as: \"master\", \"media\", or empty when it is neither.")
        .def_readonly("findings", &Report::findings, "What the profiles find, a list.")
        .def_readonly("rejected", &Report::rejected,
                      "Why the models reject the text; None when they accept it.");
    module.def(
        "check_text",
        [](const py::object& text, const std::vector<std::string>& profiles, const std::string& kind,
           bool fixes) {
            const Bytes bytes(text);
            VELHLSDiagnostics::Options options;
            options.kind = kindNamed(kind);
            options.profiles = profilesNamed(profiles);
            options.fixes = fixes;
            const py::gil_scoped_release released;
            return Report(VELHLSDiagnostics::check(bytes.view(), options));
        },
        py::arg("text"), py::arg("profiles"), py::arg("kind"), py::arg("fixes"));
}

template <typename Class, typename Record>
void defFixClass(Class& made, VELHLSFix::Class Record::*member) {
    made.def_property_readonly(
        "fix_class", [member](const Record& record) { return strOf(Fix::textOf(record.*member)); },
        "\"safe\": it means the same. \"lossy\": it takes something away. \"guess\": it says what may be "
        "wrong.");
}

Mended mend(const py::object& text, const std::vector<std::string>& profiles, const std::string& kind,
            bool lossy, bool guess) {
    const Bytes bytes(text);
    VELHLSFixes::Options options;
    options.kind = kindNamed(kind);
    options.profiles = profilesNamed(profiles);
    options.lossy = lossy;
    options.guess = guess;
    const bool isBytes = PyBytes_Check(text.ptr()) != 0;
    const py::gil_scoped_release released;
    VELHLSFixes::Result result = VELHLSFixes::apply(bytes.view(), options);
    return {std::move(result.text), isBytes,       std::move(result.edits),
            std::move(result.done), result.rounds, Report(std::move(result.left))};
}

void defFixes(py::module_& module) {
    py::class_<Fix> fix(module, "Fix", "A way to mend what a finding found.");
    defFixClass(fix, &Fix::fixClass);
    defReadText(fix, "sentence", &Fix::sentence, "What it does, in a few words that begin with a verb.");
    fix.def_readonly(
        "edits", &Fix::edits,
        "The edits of the text that was checked, a list: they belong together, and Document.apply "
        "takes them.");

    py::class_<Done> done(module, "DoneFix", "A fix that was taken.");
    defReadText(done, "rule", &Done::ruleId, "The rule whose finding it mended.");
    defReadText(done, "profile", &Done::profile, "The profile of that rule.");
    defFixClass(done, &Done::fixClass);
    defReadText(done, "sentence", &Done::sentence, "What it did, in a few words that begin with a verb.");
    done.def_readonly("line", &Done::line,
                      "The line of its first edit, in the text that was given. Counted from 1.");

    py::class_<Mended>(module, "Mended", "What mending a text answers.")
        .def_property_readonly(
            "text", [](const Mended& self) { return textLike(self.isBytes, self.text); },
            "The whole text, mended as far as that went: str of str, and bytes of bytes and files.")
        .def_readonly(
            "edits", &Mended::edits,
            "The edits that make it of the text that was given, a list in the order of their places.")
        .def_readonly("done", &Mended::done, "The fixes that were taken, a list in the order of the work.")
        .def_readonly("rounds", &Mended::rounds, "How many rounds took something.")
        .def_readonly("left", &Mended::left,
                      "The Report of the mended text, with the fixes that were not taken.");
    module.def("fix_text", mend, py::arg("text"), py::arg("profiles"), py::arg("kind"), py::arg("lossy"),
               py::arg("guess"));
}

void defComparison(py::module_& module) {
    py::class_<Change> change(module, "Change", "One thing in which two versions of a playlist differ.");
    change.def_property_readonly(
        "kind", [](const Change& found) { return strOf(Change::textOf(found.kind)); },
        "\"added\", \"removed\" or \"changed\".");
    defReadText(change, "path", &Change::path, "What it happened to: \"segment 268433\".");
    defReadText(change, "what", &Change::what,
                "Which part of that: \"duration\"; empty for the whole of it.");
    defReadText(change, "old_text", &Change::oldText, "What the old version says.");
    defReadText(change, "new_text", &Change::newText, "What the new version says.");
    change.def_readonly("old_line", &Change::oldLine, "Counted from 1; 0 where there is none.");
    change.def_readonly("new_line", &Change::newLine, "Counted from 1; 0 where there is none.");

    py::class_<VELHLSComparison>(module, "Comparison",
                                 "What changed between two versions, and what of it is forbidden.")
        .def_readonly("changes", &VELHLSComparison::changes, "What changed, a list.")
        .def_readonly("findings", &VELHLSComparison::findings, "The changes that RFC 8216 forbids, a list.");
    module.def(
        "compare_texts",
        [](const py::object& oldText, const py::object& newText, std::optional<double> elapsed) {
            const Bytes before(oldText);
            const Bytes now(newText);
            std::optional<VELHLSComparison> comparison;
            {
                const py::gil_scoped_release released;
                comparison = VELHLSComparison::compare(VELHLSDocument(before.string()),
                                                       VELHLSDocument(now.string()), {elapsed});
            }
            if (!comparison) throw py::value_error("the versions are of different kinds, or no playlists");
            return *std::move(comparison);
        },
        py::arg("old"), py::arg("new"), py::arg("elapsed"));
}

void defLine(py::module_& module) {
    py::class_<Attribute>(module, "Attribute",
                          "One attribute of a line, as it stands (RFC 8216, section 4.2).")
        .def_property_readonly(
            "name", [](const Attribute& self) { return strOf(self.attribute.name); }, "Its name.")
        .def_property_readonly(
            "value", [](const Attribute& self) { return strOf(self.attribute.value); },
            "Its value, without its quotes.")
        .def_property_readonly(
            "written_value", [](const Attribute& self) { return strOf(self.attribute.writtenValue); },
            "Its value as it is written: with its quotes.")
        .def_property_readonly(
            "quoted", [](const Attribute& self) { return self.attribute.quoted; },
            "Whether the value begins with a quote.")
        .def_property_readonly(
            "is_well_formed",
            [](const Attribute& self) { return self.attribute.fault == VELHLSAttribute::None; },
            "Whether it keeps to the grammar.")
        .def_readonly("column", &Attribute::column,
                      "The byte of the line at which it begins, counted from 1.");
    py::class_<Uri>(module, "Uri", "A URI in a document: a whole line, or the value of an attribute.")
        .def_property_readonly(
            "line", [](const Uri& self) { return self.uri.line; }, "The number of its line, counted from 1.")
        .def_property_readonly(
            "text", [](const Uri& self) { return strOf(self.uri.text); }, "The URI itself.")
        .def_property_readonly(
            "attribute", [](const Uri& self) { return strOf(self.uri.attribute); },
            "The name of the attribute; empty for a URI line.");
    py::class_<Line>(module, "Line", "One line of a document: where it is, and what it says.")
        .def_property_readonly(
            "kind", [](const Line& self) { return lineKindText(self.line.kind); },
            "\"tag\", \"uri\", \"comment\" or \"blank\".")
        .def_property_readonly(
            "number", [](const Line& self) { return self.line.number; }, "Counted from 1.")
        .def_property_readonly(
            "text", [](const Line& self) { return strOf(self.line.text); }, "The whole line without its end.")
        .def_property_readonly(
            "ending", [](const Line& self) { return strOf(self.line.ending); },
            "\"\\n\", \"\\r\\n\", or empty.")
        .def_property_readonly(
            "name", [](const Line& self) { return strOf(self.line.name); },
            "Of a tag, and of a vendor's line, the name without \"#\"; empty otherwise.")
        .def_property_readonly(
            "value", [](const Line& self) { return strOf(self.line.value); },
            "What follows the colon; the URI of a URI line; the text of a comment.")
        .def_property_readonly(
            "is_known", [](const Line& self) { return self.line.definition != nullptr; },
            "Whether the format has a tag of this name.")
        .def_property_readonly(
            "attributes",
            [](const Line& self) {
                py::list attributes;
                for (const VELHLSAttribute& attribute : self.line.attributes())
                    attributes.append(
                        py::cast(Attribute{self.owner, attribute, self.line.column(attribute.text)}));
                return attributes;
            },
            "The attributes of the value, a list: those with one name all come.");
}

/// The changes of a dict of names: None removes an attribute.
std::vector<VELHLSAttributeChange> changesOf(const py::dict& given) {
    std::vector<VELHLSAttributeChange> changes;
    for (const auto& [name, value] : given) {
        VELHLSAttributeChange change{bytesOf(name), std::nullopt};
        if (!value.is_none()) change.value = bytesOf(value);
        changes.push_back(std::move(change));
    }
    return changes;
}

py::object applied(const Document& self, const std::vector<Edit>& edits) {
    const VELHLSEditedText edited = self.document.apply(edits);
    if (edited.overlap) {
        throw py::value_error("edits " + std::to_string(edited.overlap->first) + " and " +
                              std::to_string(edited.overlap->second) + " overlap");
    }
    return self.textOf(edited.text);
}

void defDocument(py::module_& module) {
    py::class_<Edit>(module, "Edit",
                     "A change of a text: so many bytes from `offset` on become `replacement`.")
        .def(py::init([](std::size_t offset, std::size_t length, const py::object& replacement) {
                 return Edit{offset, length, bytesOf(replacement)};
             }),
             py::arg("offset"), py::arg("length"), py::arg("replacement"))
        .def_readonly("offset", &Edit::offset, "Where it begins, in bytes.")
        .def_readonly("length", &Edit::length, "How many bytes it replaces.")
        .def_property_readonly(
            "replacement", [](const Edit& edit) { return strOf(edit.replacement); },
            "What comes in their place.");

    using Held = std::shared_ptr<Document>;
    py::class_<Document, Held>(
        module, "Document",
        "The text of a playlist, understood: its lines, tags and attributes, and edits that touch "
        "nothing else. A document never changes.")
        .def(py::init([](const py::object& text) {
                 return std::make_shared<Document>(
                     Document{VELHLSDocument(bytesOf(text)), PyBytes_Check(text.ptr()) != 0});
             }),
             py::arg("text"))
        .def_property_readonly(
            "text", [](const Document& self) { return self.textOf(self.document.text()); },
            "The text as it was given: str of str, and bytes of bytes.")
        .def_property_readonly(
            "kind", [](const Document& self) { return kindText(self.document.kind()); },
            "\"master\", \"media\", or empty when no tag tells.")
        .def(
            "__len__", [](const Document& self) { return self.document.lineCount(); }, "The number of lines.")
        .def(
            "line",
            [](const Held& self, std::size_t number) {
                return Line{self, self->document.line(number)};
            },
            py::arg("number"),
            "The line with this number, counted from 1. IndexError for one that is not there.")
        .def_property_readonly(
            "lines",
            [](const Held& self) {
                py::list lines;
                for (const VELHLSLine line : self->document.lines())
                    lines.append(py::cast(Line{self, line}));
                return lines;
            },
            "All lines, a list.")
        .def_property_readonly(
            "uris",
            [](const Held& self) {
                py::list uris;
                for (const VELHLSUri& uri : self->document.uris())
                    uris.append(py::cast(Uri{self, uri}));
                return uris;
            },
            "All URIs, in lines and attributes, a list.")
        .def(
            "change_attributes",
            [](const Document& self, std::size_t line, const py::dict& changes) {
                return self.document.changeAttributes(line, changesOf(changes));
            },
            py::arg("line"), py::arg("changes"),
            "Sets, adds, and for None removes attributes of a line: one edit for all of them.")
        .def(
            "replace_value",
            [](const Document& self, std::size_t line, const py::object& value) {
                return self.document.replaceValue(line, Bytes(value).view());
            },
            py::arg("line"), py::arg("value"), "Replaces what follows the colon of a tag.")
        .def(
            "replace_uri",
            [](const Document& self, const Uri& uri, const py::object& replacement) {
                if (&self != uri.owner.get()) throw py::value_error("the URI is one of another document");
                return self.document.replaceUri(uri.uri, Bytes(replacement).view());
            },
            py::arg("uri"), py::arg("replacement"), "Replaces a URI of this document.")
        .def(
            "insert_before",
            [](const Document& self, std::size_t line, const py::object& text) {
                return self.document.insertBefore(line, Bytes(text).view());
            },
            py::arg("line"), py::arg("text"),
            "Inserts lines before a line, or after the last one for the number that follows its own.")
        .def(
            "insert_after",
            [](const Document& self, std::size_t line, const py::object& text) {
                return self.document.insertAfter(line, Bytes(text).view());
            },
            py::arg("line"), py::arg("text"), "Inserts lines after a line; before the first one for 0.")
        .def(
            "remove_lines",
            [](const Document& self, std::size_t first, std::size_t last) {
                return self.document.removeLines(first, last);
            },
            py::arg("first"), py::arg("last"), "Removes the lines from the first to the last of these.")
        .def("apply", applied, py::arg("edits"),
             "The text with all edits done: str of str, and bytes of bytes. ValueError when two overlap.");
}

/// A playlist, or the Reason why there is none.
py::object parseText(const py::object& text, const std::string& kindName) {
    const Bytes bytes(text);
    VELHLSReason reason;
    std::shared_ptr<VELHLSMediaStream> media;
    std::shared_ptr<VELHLSParsedManifest> manifest;
    VELHLSDiagnostics::PlaylistKind kind = kindNamed(kindName);
    {
        const py::gil_scoped_release released;
        if (kind == VELHLSDiagnostics::Detect) {
            const auto detection = VELHLSDiagnostics::detectKind(bytes.view());
            if (detection) kind = detection->kind;
        }
        if (kind == VELHLSDiagnostics::Media)
            media = VELHLSMediaStream::parseMediaStream(bytes.view(), &reason);
        if (kind == VELHLSDiagnostics::Master) {
            manifest = VELHLSParsedManifest::parseManifest(bytes.view(), &reason);
        }
        if (kind == VELHLSDiagnostics::Detect) {
            VELHLSDiagnostics::Options options;
            options.profiles.clear();
            reason = VELHLSDiagnostics::check(bytes.view(), options).rejected.value_or(reason);
        }
    }
    if (media != nullptr) return py::cast(media);
    if (manifest != nullptr) return py::cast(std::make_shared<MasterPlaylist>(manifest));
    return py::cast(reason);
}

}  // namespace

void defTexts(py::module_& module) {
    defFindings(module);
    defFixes(module);
    defComparison(module);
    defLine(module);
    defDocument(module);
    module.def("parse_text", parseText, py::arg("text"), py::arg("kind"));
}

}  // namespace velhls_python
