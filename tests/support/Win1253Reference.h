#pragma once

// The code page as Windows-1253 defines it, written out by hand: the driver's
// table and the virtual register's own are both checked against it.

// Windows-1253, bytes 0xA0 to 0xFE in order; 0 where the code page
// defines nothing (0xAA, 0xD2). Signs that have look-alikes elsewhere in
// Unicode are written by number.
constexpr char16_t kWindows1253A0toFE[] = {
    u'\u00A0', u'\u0385', u'\u0386', u'£', u'¤', u'¥', u'¦', u'§',
    u'¨', u'©', 0, u'«', u'¬', u'\u00AD', u'®', u'\u2015',
    u'°', u'±', u'²', u'³', u'\u0384', u'\u00B5', u'¶', u'\u00B7', u'Έ', u'Ή', u'Ί', u'»', u'Ό', u'½', u'Ύ', u'Ώ',
    u'ΐ', u'Α', u'Β', u'Γ', u'Δ', u'Ε', u'Ζ', u'Η', u'Θ', u'Ι', u'Κ', u'Λ', u'Μ', u'Ν', u'Ξ', u'Ο',
    u'Π', u'Ρ', 0, u'Σ', u'Τ', u'Υ', u'Φ', u'Χ', u'Ψ', u'Ω', u'Ϊ', u'Ϋ', u'ά', u'έ', u'ή', u'ί',
    u'ΰ', u'α', u'β', u'γ', u'δ', u'ε', u'ζ', u'η', u'θ', u'ι', u'κ', u'λ', u'μ', u'ν', u'ξ', u'ο',
    u'π', u'ρ', u'ς', u'σ', u'τ', u'υ', u'φ', u'χ', u'ψ', u'ω', u'ϊ', u'ϋ', u'ό', u'ύ', u'ώ',
};
constexpr int kFirst = 0xA0;
static_assert(sizeof kWindows1253A0toFE / sizeof kWindows1253A0toFE[0] == 0xFF - kFirst);
