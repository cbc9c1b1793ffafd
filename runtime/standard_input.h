// Keeps the process's standard input out of the reach of modules, which may close descriptor 0.
#ifndef KZB_RUNTIME_STANDARD_INPUT_H
#define KZB_RUNTIME_STANDARD_INPUT_H

namespace kzb {

// Moves standard input to another descriptor and puts the null device in its place, once; returns the new descriptor,
// or -1 when there was none.
int move_standard_input() noexcept;

// Puts the null device back where a module has closed it. Nothing before the move.
void guard_descriptor_0() noexcept;

} // namespace kzb

#endif
