// Reads the entries of a zip file (a .vsix) from its central directory, with zlib for the data.
import * as zlib from 'node:zlib';

export interface ZipEntry {
  name: string;
  /** The Unix mode bits the packer recorded, 0 when it recorded none. */
  mode: number;
  data(): Buffer;
}

export function readZip(buf: Buffer): Map<string, ZipEntry> {
  let end = buf.length - 22;
  while (end >= 0 && buf.readUInt32LE(end) !== 0x06054b50) end--;
  if (end < 0) throw new Error('no end of central directory: not a zip file');
  const count = buf.readUInt16LE(end + 10);
  let pos = buf.readUInt32LE(end + 16);
  const entries = new Map<string, ZipEntry>();
  for (let i = 0; i < count; i++) {
    if (buf.readUInt32LE(pos) !== 0x02014b50) throw new Error(`bad central directory entry ${i}`);
    const method = buf.readUInt16LE(pos + 10);
    const compressed = buf.readUInt32LE(pos + 20);
    const nameLength = buf.readUInt16LE(pos + 28);
    const extraLength = buf.readUInt16LE(pos + 30);
    const commentLength = buf.readUInt16LE(pos + 32);
    const external = buf.readUInt32LE(pos + 38);
    const local = buf.readUInt32LE(pos + 42);
    const name = buf.toString('utf8', pos + 46, pos + 46 + nameLength);
    entries.set(name, {
      name,
      mode: (external >>> 16) & 0o7777,
      data: () => {
        const start = local + 30 + buf.readUInt16LE(local + 26) + buf.readUInt16LE(local + 28);
        const raw = buf.subarray(start, start + compressed);
        if (method === 0) return Buffer.from(raw);
        if (method === 8) return zlib.inflateRawSync(raw);
        throw new Error(`${name}: compression method ${method}`);
      },
    });
    pos += 46 + nameLength + extraLength + commentLength;
  }
  return entries;
}
