// Pages straight from the system: reserving, committing, aligned mappings that can grow.
#pragma once
#include <cstddef>

namespace fl::pages {

inline constexpr std::size_t huge = std::size_t{2} << 20; // size and alignment of a huge page

// Address space without memory behind it, aligned to `huge`; null if it cannot be had.
char *reserve(std::size_t bytes);
// Makes a part of a reservation usable and zero; with huge pages where asked and possible.
bool commit(char *start, std::size_t bytes, bool huge_pages);
// Takes the memory behind committed pages back; they stay usable and read as zero.
void discard(char *start, std::size_t bytes);

// Usable zero pages aligned to `huge`, huge ones where the size allows; null if memory is short.
char *map(std::size_t bytes);
void unmap(char *start, std::size_t bytes);
// The mapping with its contents at a new aligned address and size, by moving page tables; null if
// memory is short, then nothing changed.
char *remap(char *start, std::size_t bytes, std::size_t wider);

// Bytes of address space that the process may take; all there are when nothing limits it.
std::size_t address_space();
// Bytes of memory in the machine.
std::size_t physical_memory();

} // namespace fl::pages
