// A two-stage table over consecutive code points: stage 1 names a block, stage 2 holds the blocks (equal ones
// once), and an element of a block is the index of a distinct record.

/**
 * @param count     number of code points, a multiple of the block size
 * @param blockSize a power of two
 * @param recordOf  code point -> record, compared as text; record 0 is the one of `first`
 */
export function makeTwoStageTable(count, blockSize, first, recordOf) {
  const records = [first];
  const recordIndex = new Map([[String(first), 0]]);
  const stage1 = [];
  const stage2 = [];
  const blockNumber = new Map();
  for (let start = 0; start < count; start += blockSize) {
    const block = [];
    for (let codePoint = start; codePoint < start + blockSize; ++codePoint) {
      const record = recordOf(codePoint);
      const key = String(record);
      if (!recordIndex.has(key)) {
        recordIndex.set(key, records.length);
        records.push(record);
      }
      block.push(recordIndex.get(key));
    }
    const key = String(block);
    if (!blockNumber.has(key)) {
      blockNumber.set(key, blockNumber.size);
      stage2.push(...block);
    }
    stage1.push(blockNumber.get(key));
  }
  return { stage1, stage2, records, blockCount: blockNumber.size };
}
