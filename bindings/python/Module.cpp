// The module velhls._velhls: what velhls/__init__.py makes the package of.
#include "Common.h"

PYBIND11_MODULE(_velhls, module) {
    module.doc() = "What the package velhls is made of; use that.";
    module.attr("version") = ZORHLSManifestLibVersionString;
    velhls_python::defColumn<double>(module, "DoubleColumn");
    velhls_python::defColumn<std::int64_t>(module, "IntegerColumn");
    velhls_python::defMedia(module);
    velhls_python::defMaster(module);
    velhls_python::defTexts(module);
}
