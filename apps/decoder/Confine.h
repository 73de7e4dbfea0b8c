#ifndef KELVA_APPS_DECODER_CONFINE_H_
#define KELVA_APPS_DECODER_CONFINE_H_

namespace apps {

/// Gives up, for good, what a process that only reads, computes and writes does not need: it can open, start and reach
/// nothing, and has bounds of memory and time. The build chooses how, by the system. False when the system refuses.
bool Confine();

}  // namespace apps

#endif  // KELVA_APPS_DECODER_CONFINE_H_
