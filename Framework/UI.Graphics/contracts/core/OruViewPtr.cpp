#include "contracts/core/OruViewPtr.h"

namespace oru {

void intrusive_ptr_release(view_record* record)
{
    if (--record->holders_ == 0) {
        delete record;
    }
}

} // namespace oru
