// libFuzzer target: the input is a list of bytes to replace in a sound database, see damage.h.
// Built with clang by -DSTATION_FUZZ=ON; run as
//   nice build/fuzz/tests/jet/fuzz/fuzz_damage -timeout=10 -max_len=256 -max_total_time=1200

#include "tests/jet/fuzz/damage.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const jet::MemoryDisk sound = jet::damageableDisk(); // made once for millions of runs
    jet::MemoryDisk disk = sound;
    jet::damage(disk, {data, size});
    jet::exercise(disk);
    return 0;
}
