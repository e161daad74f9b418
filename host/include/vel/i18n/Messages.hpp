#pragma once

// The identifier of the text conversions' diagnostic. It has no template in
// the catalogue: the conversion raises it with a text that says which
// encoding the input failed.

namespace vel::i18n::messages {
inline constexpr char InvalidText[] = "i18n:InvalidText";
} // namespace vel::i18n::messages
