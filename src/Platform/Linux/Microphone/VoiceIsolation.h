#pragma once

namespace corvellan {

struct PulseDefaultSource;

/// Whether a source takes noise or echo out of the voice before programs get it.
///
/// No sound server says so in one word. These count:
/// - whatever PulseAudio's own module-echo-cancel made;
/// - a source that is itself a filter (device.class "filter", or PipeWire's node.link-group or node.virtual)
///   and tells in its name, its description or its group that it is about echo or noise: PipeWire's
///   echo-cancel, filter chains with RNNoise or DeepFilter, programs that suppress noise.
///
/// A headset that names itself after its noise cancelling is no filter, and a remapped source is no filter of
/// noise. A filter with a name of its own choice is not recognised.
[[nodiscard]] bool isolatesVoice(const PulseDefaultSource& source);

}  // namespace corvellan
