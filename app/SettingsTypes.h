#pragma once

/// Makes QVector<int> and QVector<QVector<float>> types that the settings store can hold.
///
/// They are registered with the meta-type system under these names and written as the toolkit writes its containers: a
/// 32-bit count, then the elements, each inner vector with a count of its own. Reading takes the same bytes, but a
/// count that the rest of the stream cannot hold makes the stream corrupt and the container empty; the toolkit's own
/// readers would first reserve memory for whatever is claimed, and a damaged store would end the program at every
/// start.
///
/// May be called more than once.
void registerSettingsTypes();
