// The system functions that the module's Carbon backend calls, as far as it calls them. simulation.cpp plays them.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

typedef unsigned char Boolean;
typedef int16_t OSErr;
typedef char *Ptr;

// ---------------------------------------------------------------------------------------------------- texts and URLs

typedef intptr_t CFIndex;
typedef const void *CFTypeRef;
typedef const struct SimulatedAllocator *CFAllocatorRef;
typedef const struct SimulatedText *CFStringRef;
typedef struct SimulatedText *CFMutableStringRef;
typedef const struct SimulatedURL *CFURLRef;
typedef uint32_t CFStringEncoding;
typedef CFIndex CFStringNormalizationForm;
typedef CFIndex CFURLPathStyle;

inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
inline constexpr CFStringNormalizationForm kCFStringNormalizationFormD = 0;
inline constexpr CFURLPathStyle kCFURLPOSIXPathStyle = 0;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const uint16_t *characters, CFIndex count);
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex longest, CFStringRef text);
void CFStringNormalize(CFMutableStringRef text, CFStringNormalizationForm form);
CFIndex CFStringGetLength(CFStringRef text);
Boolean CFStringGetCString(CFStringRef text, char *buffer, CFIndex size, CFStringEncoding encoding);

// ------------------------------------------------------------------------------------------------------------- files

// Opaque: what they refer to is the system's affair.
struct FSRef {
    uint8_t hidden[80];
};
struct FSSpec {
    int16_t volume;
    int32_t folder;
    uint8_t name[64];
};
struct HFSUniStr255 {
    uint16_t length;
    uint16_t unicode[255];
};

OSErr FSpMakeFSRef(const FSSpec *older_reference, FSRef *reference);
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef *reference);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef component,
                                               Boolean is_directory);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);

// -------------------------------------------------------------------------------------------------- offscreen worlds

struct Rect {
    int16_t top, left, bottom, right;
};
// A map's row bytes carry two bits that are no part of the number.
struct PixMap {
    Ptr baseAddr;
    uint16_t rowBytes;
    int16_t pixelSize;
};
typedef PixMap **PixMapHandle;
typedef struct SimulatedPort *CGrafPtr;
typedef CGrafPtr GWorldPtr;
typedef struct SimulatedColourTable **CTabHandle;
typedef struct SimulatedDevice **GDHandle;

OSErr NewGWorld(GWorldPtr *world, int16_t depth, const Rect *bounds, CTabHandle colours, GDHandle device,
                uint32_t flags);
void DisposeGWorld(GWorldPtr world);
PixMapHandle GetGWorldPixMap(GWorldPtr world);
PixMapHandle GetPortPixMap(CGrafPtr port);
Boolean LockPixels(PixMapHandle map);
void UnlockPixels(PixMapHandle map);
Ptr GetPixBaseAddr(PixMapHandle map);
long GetPixRowBytes(PixMapHandle map);
int16_t GetPixDepth(PixMapHandle map);

uint32_t TickCount();
}
