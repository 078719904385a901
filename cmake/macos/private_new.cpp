// SPDX-License-Identifier: MIT
//
// The memory operators of one binary, hidden inside it. The ones of the statically linked libc++
// are weak exports, which the loader would merge between the tool and any plug-in that brings its
// own; memory would then be taken from one runtime and given back to another. With these in the
// link the library's are never pulled in.
#include <cstdlib>
#include <new>

namespace {

void* Allocate(std::size_t size, std::size_t alignment) {
  if (size == 0) size = 1;
  for (;;) {
    void* memory = nullptr;
    if (alignment <= alignof(std::max_align_t)) {
      memory = std::malloc(size);
    } else if (posix_memalign(&memory, alignment, size) != 0) {
      memory = nullptr;
    }
    if (memory != nullptr) return memory;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

void* AllocateOrNull(std::size_t size, std::size_t alignment) noexcept {
  try {
    return Allocate(size, alignment);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// The tag only chooses the form.
using Quiet = const std::nothrow_t&;
using Size = std::size_t;
using Align = std::align_val_t;

}  // namespace

// clang-format off
void* operator new  (Size size)                           { return Allocate(size, 0); }
void* operator new  (Size size, Align a)                  { return Allocate(size, Size(a)); }
void* operator new  (Size size, Quiet) noexcept           { return AllocateOrNull(size, 0); }
void* operator new  (Size size, Align a, Quiet) noexcept  { return AllocateOrNull(size, Size(a)); }
void* operator new[](Size size)                           { return Allocate(size, 0); }
void* operator new[](Size size, Align a)                  { return Allocate(size, Size(a)); }
void* operator new[](Size size, Quiet) noexcept           { return AllocateOrNull(size, 0); }
void* operator new[](Size size, Align a, Quiet) noexcept  { return AllocateOrNull(size, Size(a)); }

void operator delete  (void* memory) noexcept                       { std::free(memory); }
void operator delete  (void* memory, Size) noexcept                 { std::free(memory); }
void operator delete  (void* memory, Align) noexcept                { std::free(memory); }
void operator delete  (void* memory, Size, Align) noexcept          { std::free(memory); }
void operator delete  (void* memory, Quiet) noexcept                { std::free(memory); }
void operator delete  (void* memory, Align, Quiet) noexcept         { std::free(memory); }
void operator delete[](void* memory) noexcept                       { std::free(memory); }
void operator delete[](void* memory, Size) noexcept                 { std::free(memory); }
void operator delete[](void* memory, Align) noexcept                { std::free(memory); }
void operator delete[](void* memory, Size, Align) noexcept          { std::free(memory); }
void operator delete[](void* memory, Quiet) noexcept                { std::free(memory); }
void operator delete[](void* memory, Align, Quiet) noexcept         { std::free(memory); }
// clang-format on
