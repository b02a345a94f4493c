// Char arrays as std::string, and the policy classes that own copies of C strings.
#ifndef OX_TEXT_HPP
#define OX_TEXT_HPP

#include <ox/text.h>

#include <string>

// The string of a char array in the local code page, or UTF-8; empty for an array that is null or
// not char. May throw std::bad_alloc.
OX_API std::string oxArrayToStdString(const oxArray *a);
OX_API std::string oxArrayToUTF8StdString(const oxArray *a);

// Policy of Protected_cptr for bytes of the local code page.
class OX_API Protected_oxString_helper {
public:
    // A copy (null for null and without memory), its end, and the string of a char array (null for
    // an array that is null or not char, and without memory).
    static char *copy(const char *str);
    static void free(char *str);
    static char *toString(const oxArray *a);
    Protected_oxString_helper &operator=(const Protected_oxString_helper &) = default;
};

// Policy of Protected_cptr for UTF-8.
class OX_API Protected_oxStringUTF8_helper {
public:
    // A copy (null for null and without memory), its end, and the string of a char array (null for
    // an array that is null or not char, and without memory).
    static char *copy(const char *str);
    static void free(char *str);
    static char *toString(const oxArray *a);
    Protected_oxStringUTF8_helper &operator=(const Protected_oxStringUTF8_helper &) = default;
};

// Policy of Protected_cptr for UTF-16.
class OX_API Protected_oxStringUTF16_helper {
public:
    // A copy (null for null and without memory), its end, and the string of a char array (null for
    // an array that is null or not char, and without memory).
    static oxChar *copy(const oxChar *str);
    static void free(oxChar *str);
    static oxChar *toString(const oxArray *a);
    Protected_oxStringUTF16_helper &operator=(const Protected_oxStringUTF16_helper &) = default;
};

#endif
