// Writes files and firmware images whose bytes come from a function, chunk by chunk.

#include "FileWriter.h"

#include "ChunkedWrite.h"
#include "TransferSizes.h"

void kelva::WriteFile(Camera& camera, const std::string& path, std::uint32_t length, const ByteSource& source,
                      void (*progress)(void*, float), void* context) {
  FilledSource chunks(source);
  SendFile(camera, path.c_str(), TransferSizes::ChunkSize(camera),
           {length, progress, context, TransferSizes::ProgressInterval(camera)}, chunks);
}

void kelva::Upgrade(Camera& camera, std::uint32_t length, const ByteSource& source, void (*progress)(void*, float),
                    void* context) {
  FilledSource chunks(source);
  SendImage(camera, length, TransferSizes::ChunkSize(camera),
            {length, progress, context, TransferSizes::ProgressInterval(camera)}, chunks);
}
