#include "jet/format/bytes.h"

namespace jet
{

void throwOutside()
{
    throwDamaged("a value lies outside its page or row");
}

} // namespace jet
