// cmaterial: identity of a material.
#include "cmaterial.h"

#include <cstring>

#include "runtime/namefield.h"

cmaterial::cmaterial() : cmaterial("Mat1") {}

cmaterial::cmaterial(char const* initialName) {
    std::memset(name, 0, sizeof name);
    StoreName(name, initialName ? initialName : "Mat1");
}

cmaterial::~cmaterial() = default;

void cmaterial::Delete() {
    delete this;
}

void cmaterial::SetName(char const* newName) {
    StoreName(name, newName);
}

void cmaterial::GetName(char* buffer) const {
    if (buffer) std::memcpy(buffer, name, sizeof name);
}
