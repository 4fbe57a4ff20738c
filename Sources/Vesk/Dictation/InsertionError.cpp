#include "Dictation/InsertionError.h"

namespace vesk {

using namespace Qt::StringLiterals;

InsertionError InsertionError::modifiersHeld()
{
    return {Case::modifiersHeld,
            u"Nothing was inserted, because a key such as Shift or Control was held down."_s};
}

InsertionError InsertionError::unavailable(QString reason) { return {Case::unavailable, std::move(reason)}; }

} // namespace vesk
