// Internal to the Python module, not installed: texts, properties and lists, the same way for all classes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velhls/VELHLS.h"
#include "velhls/VELHLSCheck.h"

namespace velhls_python {

namespace py = pybind11;

/// A str of any bytes: those that are not UTF-8 become lone surrogates, which bytesOf() turns back (PEP 383).
inline py::str strOf(std::string_view text) {
    PyObject* const made =
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
    if (made == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(made);
}

/// The bytes of a str, a bytes or whatever has a buffer of bytes. It looks into the object, which lives as long as this does.
class Bytes {
  public:
    explicit Bytes(py::handle text) : owner_(py::reinterpret_borrow<py::object>(text)) {
        if (PyUnicode_Check(text.ptr()) != 0) {
            lookIntoStr(text);
        } else if (PyBytes_Check(text.ptr()) != 0) {
            view_ = {PyBytes_AS_STRING(text.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(text.ptr()))};
        } else {
            throw py::type_error("expected str or bytes, seen " + std::string(Py_TYPE(text.ptr())->tp_name));
        }
    }

    [[nodiscard]] std::string_view view() const { return view_; }
    [[nodiscard]] std::string string() const { return std::string(view_); }

  private:
    void lookIntoStr(py::handle text) {
        Py_ssize_t length = 0;
        const char* const data = PyUnicode_AsUTF8AndSize(text.ptr(), &length);
        if (data != nullptr) {
            view_ = {data, static_cast<std::size_t>(length)};
            return;
        }
        PyErr_Clear();
        PyObject* const encoded = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
        if (encoded == nullptr) throw py::error_already_set();
        owner_ = py::reinterpret_steal<py::object>(encoded);
        view_ = {PyBytes_AS_STRING(encoded), static_cast<std::size_t>(PyBytes_GET_SIZE(encoded))};
    }

    py::object owner_;
    std::string_view view_;
};

inline std::string bytesOf(py::handle text) {
    return Bytes(text).string();
}

/// A property of a text.
template <typename Class, typename Record>
void defText(Class& made, const char* name, std::string Record::*member, const char* documentation) {
    made.def_property(
        name, [member](const Record& record) { return strOf(record.*member); },
        [member](Record& record, const py::object& text) { record.*member = bytesOf(text); }, documentation);
}

/// A property of a value that pybind11 knows.
template <typename Class, typename Record, typename Value>
void defValue(Class& made, const char* name, Value Record::*member, const char* documentation) {
    made.def_property(
        name, [member](const Record& record) { return record.*member; },
        [member](Record& record, const Value& value) { record.*member = value; }, documentation);
}

/// A property that is a record, or None.
template <typename Class, typename Record, typename Value>
void defRecord(Class& made, const char* name, std::shared_ptr<Value> Record::*member,
               const char* documentation) {
    made.def_property(
        name, [member](const Record& record) { return record.*member; },
        [member](Record& record, std::shared_ptr<Value> value) { record.*member = std::move(value); },
        documentation);
}

/// A property of a text that is only read.
template <typename Class, typename Record, typename Text>
void defReadText(Class& made, const char* name, Text Record::*member, const char* documentation) {
    made.def_property_readonly(
        name, [member](const Record& record) { return strOf(record.*member); }, documentation);
}

/// A list of a playlist that Python changes in place: it holds the playlist, and no record but by it.
template <typename Playlist, typename Record>
struct RecordList {
    using Records = std::vector<std::shared_ptr<Record>>;

    std::shared_ptr<Playlist> owner;
    Records Playlist::*member;

    [[nodiscard]] Records& records() const { return (*owner).*member; }
};

/// A record that is none is refused where it would come in.
template <typename Record>
std::shared_ptr<Record> recordOf(py::handle item) {
    auto record = item.cast<std::shared_ptr<Record>>();
    if (record == nullptr) throw py::type_error("expected a record, seen None");
    return record;
}

template <typename Record>
std::vector<std::shared_ptr<Record>> recordsOf(const py::iterable& items) {
    std::vector<std::shared_ptr<Record>> records;
    for (const py::handle item : items)
        records.push_back(recordOf<Record>(item));
    return records;
}

/// Counted from the end when it is negative. Throws IndexError.
inline std::size_t placeIn(std::size_t size, py::ssize_t index) {
    const auto length = static_cast<py::ssize_t>(size);
    if (index < 0) index += length;
    if (index < 0 || index >= length) throw py::index_error("list index out of range");
    return static_cast<std::size_t>(index);
}

/// Defines the class of such lists: a MutableSequence, whose other methods come from collections.abc.
template <typename Playlist, typename Record>
void defList(py::module_& module, const char* name, const char* documentation) {
    using List = RecordList<Playlist, Record>;
    const py::object base = py::module_::import("collections.abc").attr("MutableSequence");
    py::class_<List> made(module, name, documentation);
    made.def("__len__", [](const List& list) { return list.records().size(); });
    made.def("__getitem__", [](const List& list, py::ssize_t index) {
        return list.records()[placeIn(list.records().size(), index)];
    });
    made.def("__getitem__", [](const List& list, const py::slice& slice) {
        std::size_t start = 0, stop = 0, step = 0, count = 0;
        if (!slice.compute(list.records().size(), &start, &stop, &step, &count))
            throw py::error_already_set();
        py::list part;
        for (; count > 0; --count, start += step)
            part.append(list.records()[start]);
        return part;
    });
    made.def("__setitem__", [](const List& list, py::ssize_t index, const py::object& item) {
        auto record = recordOf<Record>(item);
        list.records()[placeIn(list.records().size(), index)] = std::move(record);
    });
    // A list of Python knows what is put where; what it holds then is taken.
    made.def("__setitem__", [](const List& list, const py::slice& slice, const py::iterable& items) {
        const py::list changed = py::list(py::cast(list.records()));
        changed[slice] = py::list(items);
        list.records() = recordsOf<Record>(changed);
    });
    made.def("__delitem__", [](const List& list, py::ssize_t index) {
        auto& records = list.records();
        records.erase(records.begin() + static_cast<std::ptrdiff_t>(placeIn(records.size(), index)));
    });
    made.def("__delitem__", [](const List& list, const py::slice& slice) {
        const py::list changed = py::list(py::cast(list.records()));
        if (PyObject_DelItem(changed.ptr(), slice.ptr()) != 0) throw py::error_already_set();
        list.records() = recordsOf<Record>(changed);
    });
    made.def(
        "insert",
        [](const List& list, py::ssize_t index, const py::object& item) {
            auto& records = list.records();
            const auto size = static_cast<py::ssize_t>(records.size());
            if (index < 0) index = std::max<py::ssize_t>(index + size, 0);
            records.insert(records.begin() + std::min(index, size), recordOf<Record>(item));
        },
        py::arg("index"), py::arg("value"), "Inserts a record before the one of this place.");
    made.def("__eq__", [](const py::object& list, const py::object& other) -> py::object {
        if (!py::isinstance<py::sequence>(other) && !py::isinstance<List>(other)) {
            return py::reinterpret_borrow<py::object>(Py_NotImplemented);
        }
        return py::bool_(py::list(list).equal(py::list(other)));
    });
    made.def("__repr__", [](const py::object& list) { return py::repr(py::list(list)); });
    for (const char* const method : {"append", "extend", "clear", "pop", "remove", "reverse", "index",
                                     "count", "__iadd__", "__contains__", "__reversed__"})
        made.attr(method) = base.attr(method);
    made.attr("__hash__") = py::none();
    base.attr("register")(made);
}

/// A property that is such a list; what is assigned to it replaces all records of it.
template <typename Class, typename Playlist, typename Record>
void defListProperty(Class& made, const char* name, std::vector<std::shared_ptr<Record>> Playlist::*member,
                     const char* documentation) {
    made.def_property(
        name,
        [member](const std::shared_ptr<Playlist>& playlist) {
            return RecordList<Playlist, Record>{playlist, member};
        },
        [member](Playlist& playlist, const py::iterable& items) {
            playlist.*member = recordsOf<Record>(items);
        },
        documentation);
}

/// One value of each record, without an object of Python for each: what memoryview and numpy look into.
template <typename Value>
struct Column {
    std::vector<Value> values;
};

template <typename Value>
void defColumn(py::module_& module, const char* name) {
    py::class_<Column<Value>>(module, name, py::buffer_protocol()).def_buffer([](Column<Value>& column) {
        return py::buffer_info(column.values.data(), static_cast<py::ssize_t>(column.values.size()), true);
    });
}

template <typename Value, typename Records, typename ValueOf>
py::memoryview columnOf(const Records& records, ValueOf valueOf) {
    Column<Value> column;
    column.values.reserve(records.size());
    for (const auto& record : records)
        column.values.push_back(valueOf(*record));
    return py::memoryview(py::cast(std::move(column)));
}

/// Media playlists and their records.
void defMedia(py::module_& module);
/// Master playlists and their records.
void defMaster(py::module_& module);
/// Findings, comparisons and documents.
void defTexts(py::module_& module);

/// A master playlist, whose records are lists here: which of them there are is said once.
struct MasterPlaylist {
    std::shared_ptr<VELHLSParsedManifest> manifest = std::make_shared<VELHLSParsedManifest>();
    std::vector<std::shared_ptr<VELHLSMediaVariant>> variants;
    std::vector<std::shared_ptr<VELHLSMediaVariant>> iFrameVariants;
    std::vector<std::shared_ptr<VELHLSMediaStreamRendition>> renditions;
    std::vector<std::shared_ptr<VELHLSManifestSessionData>> sessionData;
    std::vector<std::shared_ptr<VELHLSProtectionData>> sessionKeys;

    MasterPlaylist() = default;
    explicit MasterPlaylist(std::shared_ptr<VELHLSParsedManifest> parsed);
    /// The manifest with the records of the lists.
    [[nodiscard]] const VELHLSParsedManifest& current() const;

  private:
    /// Whether the manifest has the variants of the lists already.
    [[nodiscard]] bool hasItsVariants() const;
};

}  // namespace velhls_python
