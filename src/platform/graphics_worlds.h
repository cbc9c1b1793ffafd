// Offscreen graphics worlds: the published functions over the records that host and module share, where the
// system has none of its own.
#pragma once

#include <picturekzb/host_interface.h>

#if !defined(KZB_CARBON)

extern "C" {

// Wider than the published rectangle, so that pictures beyond 32,767 pixels have one.
struct Rect {
    int32_t top, left, bottom, right;
};

// Makes a world of `depth` bits (8, 16, 24 or 32) and the size of `bounds`, its pixels zero, its rows padded to 16
// bytes. Gives 0, or an error code and a nil world. Colour table, device and flags are not looked at.
int32_t NewGWorld(GWorldPtr *world, int16_t depth, const Rect *bounds, void *colour_table, void *device,
                  uint32_t flags);

void DisposeGWorld(GWorldPtr world);
PixMapHandle GetGWorldPixMap(GWorldPtr world);
PixMapHandle GetPortPixMap(GWorldPtr port);

// Non-zero: the pixels stay where they are until UnlockPixels.
KZBBoolean LockPixels(PixMapHandle map);
void UnlockPixels(PixMapHandle map);

char *GetPixBaseAddr(PixMapHandle map);
int32_t GetPixRowBytes(PixMapHandle map);
int16_t GetPixDepth(PixMapHandle map);
}

#endif
