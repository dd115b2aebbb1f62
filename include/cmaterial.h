// cmaterial: a surface description kept in the scene's material list.
//
// So far a material is its identity: the name by which the scene keeps material names unique
// and by which node and mesh records refer to it. The colours, shininess, amounts, image maps,
// the viewport set-up and the persisted record are added with the materials work.
#ifndef ORVANE_CMATERIAL_H
#define ORVANE_CMATERIAL_H

#include "coreapi.h"

class CORE_API cmaterial {
public:
    // A material named "Mat1"; the scene makes such a name unique when it is added.
    cmaterial();
    // A material named `name` (at most 63 characters kept; null gives "Mat1").
    explicit cmaterial(char const* name);
    virtual ~cmaterial();

    // Destroys the object through its virtual destructor: the way scene code disposes of it.
    void Delete();

    // Stores `name` in the 64-byte name field: up to 63 characters are copied whole, a longer
    // name is cut to its first 63 characters. A null name is ignored.
    void SetName(char const* name);
    // The stored name (zero-terminated, at most 63 characters).
    char* GetName() { return name; }
    char const* GetName() const { return name; }
    // Copies the stored name with its terminator into `buffer` (64 bytes); null is ignored.
    void GetName(char* buffer) const;

private:
    char name[64];
};

#endif
