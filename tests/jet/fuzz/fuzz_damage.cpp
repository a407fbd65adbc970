// libFuzzer target: the input names a sound database and bytes to replace in it, see damage.h.

#include "tests/jet/fuzz/damage.h"
#include "tests/jet/fuzz/shapes.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const std::vector<jet::MemoryDisk> shapes = jet::makeShapes(); // for millions of runs
    jet::exerciseDamaged(shapes, {data, size});
    return 0;
}
