#include "contracts/ogl/internal/OruOglBufferStore.h"

#include "contracts/ogl/OruOglGl.h"

OruOglBufferStore::~OruOglBufferStore()
{
    returned_.insert(returned_.end(), used_.begin(), used_.end());
    collect();
}

unsigned int OruOglBufferStore::make()
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    used_.insert(name);
    return name;
}

void OruOglBufferStore::giveBack(unsigned int name)
{
    if (used_.erase(name) == 1) {
        returned_.push_back(name);
    }
}

void OruOglBufferStore::collect()
{
    if (returned_.empty()) {
        return;
    }
    glDeleteBuffers(static_cast<GLsizei>(returned_.size()), returned_.data());
    returned_.clear();
}
