// Finds the arbolet program that serves the extension: the arbolet.path setting, else the copy
// shipped inside the extension for this platform, else the one on PATH.

import * as path from 'path';

export interface PathEnvironment {
  platform: NodeJS.Platform;
  arch: string;
  extensionPath: string;
  /** The PATH variable. */
  searchPath: string | undefined;
  /** Windows' executable extensions (PATHEXT). */
  pathExt?: string;
  isFile(file: string): boolean;
}

export interface ServerPath {
  command: string;
  source: 'setting' | 'bundled' | 'path';
}

/** The folder and file name of the copy shipped for a platform, when one is shipped. */
export function bundledRelativePath(platform: NodeJS.Platform, arch: string): string | undefined {
  if (platform === 'linux' && arch === 'x64') return path.posix.join('bin', 'linux-x64', 'arbolet');
  // The 64-bit Windows build also serves Windows on ARM through its x64 emulation.
  if (platform === 'win32' && (arch === 'x64' || arch === 'arm64')) return path.posix.join('bin', 'win32-x64', 'arbolet.exe');
  return undefined;
}

/**
 * @returns the program to start, or the places looked at when there is none
 */
export function resolveServerPath(configured: unknown, env: PathEnvironment): ServerPath | { tried: string[] } {
  const p = env.platform === 'win32' ? path.win32 : path.posix;
  const tried: string[] = [];
  if (typeof configured === 'string' && configured.trim() !== '') {
    // A path the user chose is taken as it is, so that a wrong one is reported, not bypassed.
    const command = expandHome(configured.trim(), env);
    return { command, source: 'setting' };
  }
  const bundled = bundledRelativePath(env.platform, env.arch);
  if (bundled) {
    const file = p.join(env.extensionPath, ...bundled.split('/'));
    if (env.isFile(file)) return { command: file, source: 'bundled' };
    tried.push(file);
  }
  const names = env.platform === 'win32' ? windowsNames(env.pathExt) : ['arbolet'];
  const separator = env.platform === 'win32' ? ';' : ':';
  for (const dir of (env.searchPath ?? '').split(separator)) {
    if (dir === '') continue;
    for (const name of names) {
      const file = p.join(dir.replace(/^"(.*)"$/, '$1'), name);
      if (env.isFile(file)) return { command: file, source: 'path' };
    }
  }
  tried.push(`arbolet on PATH`);
  return { tried };
}

function windowsNames(pathExt: string | undefined): string[] {
  const exts = (pathExt ?? '.COM;.EXE;.BAT;.CMD').split(';').filter((e) => e !== '');
  const names = exts.map((e) => `arbolet${e.toLowerCase()}`);
  return names.includes('arbolet.exe') ? names : ['arbolet.exe', ...names];
}

function expandHome(file: string, env: PathEnvironment): string {
  const home = process.env.HOME ?? process.env.USERPROFILE;
  if (home && (file === '~' || file.startsWith('~/') || (env.platform === 'win32' && file.startsWith('~\\')))) {
    return home + file.slice(1);
  }
  return file;
}

/**
 * How the client starts the server: over stdio, which is what it uses when no transport is named.
 * Naming TransportKind.stdio would make it append "--stdio", which `arbolet lsp` does not take.
 */
export function serverExecutable(command: string): { command: string; args: string[] } {
  return { command, args: ['lsp'] };
}
