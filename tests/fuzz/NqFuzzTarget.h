#pragma once

#include "NqFuzzInput.h"

#include <nqControlCore/foundation/xml/NqXmlObject.h>

#include <span>
#include <string>
#include <string_view>

/// Something that takes any bytes, and checks that what must hold does.
struct NqFuzzTarget {
    const char* name; ///< of its folder in the corpus, too
    void (*run)(NqFuzzInput& input);

    /// Runs it on some bytes. Ends the program where a property doesn't hold, or where it takes longer than
    /// that many bytes may. `where` is for the message.
    void operator()(std::string_view bytes, const std::string& where) const;

    static std::span<const NqFuzzTarget> all();
};

void nqFuzzPersistent(NqFuzzInput& input);
void nqFuzzExpression(NqFuzzInput& input);
void nqFuzzUrdf(NqFuzzInput& input);
void nqFuzzEditable(NqFuzzInput& input);
void nqFuzzFilter(NqFuzzInput& input);
void nqFuzzSolver(NqFuzzInput& input);
void nqFuzzBounded(NqFuzzInput& input);
void nqFuzzLoop(NqFuzzInput& input);
void nqFuzzSettings(NqFuzzInput& input);

/// Ends the program with a message unless it holds.
void nqHolds(bool isTrue, const char* property);

/// How many lines were printed since the last run began.
unsigned nqLinesPrinted();

/// Writes the object; what was written must read back equal, but for what is never written, and be valid by
/// the object's schema. Gives what was written.
std::string nqWrittenAndReadBack(const NqXmlObject& object, bool isAllWritten = true);

/// Reads a document into a new object, and checks it as above. A document that is valid by the schema must
/// be read without complaint (but for counts), unless the schema leaves part of it open.
std::string nqReadAndCheck(std::string_view document, NqXmlObject& object, bool isSchemaWhole = true);
