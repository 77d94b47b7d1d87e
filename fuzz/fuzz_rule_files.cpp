// Feeds arbitrary bytes to the two files a user hands Nomen besides its
// folders, and checks what they promise. A rule file either gives a rule,
// which written and read again is the same rule, or says why not. A map
// file gives absolute moves whose new name is in the old one's folder when
// it is a bare name, and whose bytes come back as they were read.

#include "MapFile.h"
#include "PathCodec.h"
#include "RenameRule.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));

    if (const auto rule = RenameRule::fromJson(bytes)) {
        const auto again = RenameRule::fromJson(rule->toJson());
        if (!again || !(*again == *rule))
            std::abort();
    } else if (rule.reason().isEmpty()) {
        std::abort();
    }

    const auto map = MapFile::parse(bytes, QStringLiteral("map.tsv"));
    if (map ? map->empty() : map.reason().isEmpty())
        std::abort();
    for (const auto &move : map ? *map : std::vector<Batch::Move>()) {
        if (!move.from.startsWith(u'/') || !move.to.startsWith(u'/'))
            std::abort();
        if (PathCodec::decode(PathCodec::encode(move.from)) != move.from)
            std::abort();
    }
    return 0;
}
