#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <utility>

class NqToken;
class NqXmlObject;
class NqXmlReader;
class NqXmlSchema;
class NqXmlWriter;

/// What the collection templates share and what doesn't depend on the type of their elements.
namespace NqXmlCollection {

// All messages start with the signature of the function that they are about, as the caller gives it; those on
// a file end with its name and the line.

/// Whether `index` is below `size`; reported in the name of the operation, such as "X::erase()", if not.
bool checkIndex(const char* signature, const char* operation, unsigned index, std::size_t size);

/// Whether `first` to `last`, which is the first that stays, is a range within `size`, empty or not;
/// reported if not.
bool checkRange(const char* signature, unsigned first, unsigned last, std::size_t size);

/// The same for a range that must not be empty, reported in the name of the operation.
bool checkFilledRange(const char* signature, const char* operation, unsigned first, unsigned last,
                      std::size_t size);

/// Moves the first `count` elements to the end. False where `count` isn't below the size.
template <typename Elements>
bool leftRotate(Elements& elements, unsigned count) {
    if (count >= elements.size()) {
        return false;
    }
    Elements rotated;
    rotated.reserve(elements.size());
    for (std::size_t i = 0; i < elements.size(); ++i) {
        rotated.push_back(std::move(elements[(i + count) % elements.size()]));
    }
    elements.swap(rotated);
    return true;
}

/// Whether the operation is true for every element; ends at the first for which it isn't.
template <typename Elements, typename Operation>
bool forAll(const Elements& elements, Operation operation) {
    for (const auto& element : elements) {
        if (!operation(element)) {
            return false;
        }
    }
    return true;
}

/// Writes the size as the count attribute of the element that the writer has open.
bool writeCount(NqXmlWriter& writer, std::size_t size);

/// Describe the count attribute, and the whole type of a list of values or of elements like `element`.
bool writeCountSchema(NqXmlSchema& schema);
bool writeListSchema(NqXmlSchema& schema, const NqXmlObject& element);

/// Opens the list of basic values, or closes it; does nothing for other elements.
bool beginList(NqXmlWriter& writer, bool isBasic);
bool endList(NqXmlWriter& writer, bool isBasic);

/// Writes an entry of a list in an element of its own.
bool writeEntry(NqXmlWriter& writer, const NqXmlObject& element);

/// Writes an object in an element of that name.
bool writeNamed(NqXmlWriter& writer, const NqToken& token, const NqXmlObject& object);

/// Writes an entry of a map, the value in an element of that name.
bool writePair(NqXmlWriter& writer, const NqXmlObject& key, const NqToken& valueToken,
               const NqXmlObject& value);

/// Describe the entries of a map, within a sequence; between the two stands the declaration of the value.
bool beginPairSchema(NqXmlSchema& schema, const NqXmlObject& key);
bool endPairSchema(NqXmlSchema& schema);

/// Begins a document that holds a collection, with a new writer that is the caller's. False, and `writer`
/// untouched, where the stream is in a failed state.
bool writeHeader(std::ostream& stream, NqXmlWriter*& writer, const NqToken& root, std::size_t size,
                 bool isBasic);

/// Ends such a document, destroys the writer and sets the pointer to null. False for a null writer, or where
/// anything wasn't written.
bool writeFooter(NqXmlWriter*& writer, bool isBasic);

/// Reports a child of the reader's current element of which nothing is known; it is passed by.
void reportUnknown(NqXmlReader& reader);

/// Report, in the name of the collection, that the reader has no data, or that it has met another count than
/// was declared. The second goes out at print type 3.
void reportNoData(NqXmlReader& reader, const char* signature, const char* name);
void reportCount(NqXmlReader& reader, const char* signature, const char* name, const char* kind,
                 long long declared, std::size_t count);

/// Report, in the name of the operation, that no class is registered for the reader's current element, or
/// that a key is there twice.
void reportUnregistered(NqXmlReader& reader, const char* signature, const char* operation);
void reportRepeatedKey(NqXmlReader& reader, const char* signature, const char* operation,
                       const std::string& key);

} // namespace NqXmlCollection
