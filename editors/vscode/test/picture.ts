// Draws the rows the VB6 Projects view would show as an HTML page in VS Code's dark side bar
// style (same labels, descriptions, icons and expansion), and photographs it with headless
// Chromium.
import { spawnSync } from 'node:child_process';
import * as fs from 'node:fs';
import * as os from 'node:os';
import * as path from 'node:path';
import * as vscode from './fakeVscode';
import { ProjectTreeProvider } from '../src/treeProvider';
import { TreeElement } from '../src/treeModel';

export interface Row {
  depth: number;
  label: string;
  description?: string;
  /** A PNG file, or a codicon name. */
  icon?: { file?: string; codicon?: string; color?: string };
  state: vscode.TreeItemCollapsibleState;
  error: boolean;
}

/** The rows in the order the view shows them, children only under expanded nodes. */
export async function visibleRows(provider: ProjectTreeProvider): Promise<Row[]> {
  const rows: Row[] = [];
  const walk = async (elements: TreeElement[], depth: number) => {
    for (const e of elements) {
      const item = (await provider.getTreeItem(e)) as unknown as vscode.TreeItem;
      const icon = item.iconPath;
      rows.push({
        depth,
        label: item.label,
        description: item.description,
        icon:
          icon instanceof vscode.ThemeIcon
            ? { codicon: icon.id, color: icon.color?.id }
            : icon instanceof vscode.Uri
              ? { file: icon.fsPath }
              : undefined,
        state: item.collapsibleState,
        error: item.resourceUri?.scheme === 'arbolet-error',
      });
      if (item.collapsibleState === vscode.TreeItemCollapsibleState.Expanded) await walk(await provider.getChildren(e), depth + 1);
    }
  };
  await walk(await provider.getChildren(), 0);
  return rows;
}

const escape = (s: string) => s.replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;').replace(/"/g, '&quot;');

export function treeHtml(rows: Row[], codiconCss: string): string {
  const body = rows
    .map((r) => {
      const twistie =
        r.state === vscode.TreeItemCollapsibleState.None
          ? '<span class="twistie"></span>'
          : `<span class="twistie codicon codicon-chevron-${r.state === vscode.TreeItemCollapsibleState.Expanded ? 'down' : 'right'}"></span>`;
      const icon = r.icon?.file
        ? `<span class="icon" style="background-image:url('${escape(pathToFileUrl(r.icon.file))}')"></span>`
        : r.icon?.codicon
          ? `<span class="icon codicon codicon-${escape(r.icon.codicon)}${r.icon.color === 'errorForeground' ? ' error' : ''}"></span>`
          : '';
      const desc = r.description ? `<span class="description">${escape(r.description)}</span>` : '';
      return `<div class="row" style="padding-left:${8 + r.depth * 8}px">${twistie}${icon}<span class="label${r.error ? ' error' : ''}">${escape(r.label)}</span>${desc}</div>`;
    })
    .join('\n');
  return `<!DOCTYPE html><html><head><meta charset="utf-8"><link rel="stylesheet" href="${escape(codiconCss)}"><style>
body { margin: 0; background: #181818; color: #cccccc; font: 13px "DejaVu Sans", "Segoe UI", sans-serif; width: 360px; }
.title { height: 35px; line-height: 35px; padding-left: 20px; font-size: 11px; color: #cccccc; }
.header { height: 22px; line-height: 22px; font-size: 11px; font-weight: bold; border-top: 1px solid #2b2b2b; display: flex; align-items: center; }
.header .codicon { font-size: 16px; width: 20px; text-align: center; }
.row { height: 22px; display: flex; align-items: center; white-space: nowrap; overflow: hidden; padding-right: 12px; }
.label, .description { overflow: hidden; text-overflow: ellipsis; }
.description { flex: 1 1 0; min-width: 0; }
.twistie { width: 16px; min-width: 16px; font-size: 16px; text-align: center; padding-right: 6px; color: #c5c5c5; }
.icon { width: 16px; height: 16px; min-width: 16px; margin-right: 6px; background-size: 16px; background-repeat: no-repeat; font-size: 16px; color: #c5c5c5; }
.icon.codicon-symbol-function, .icon.codicon-symbol-method { color: #b180d7; }
.icon.codicon-symbol-constant, .icon.codicon-symbol-enum, .icon.codicon-symbol-struct { color: #ee9d28; }
.error { color: #f48771 !important; }
.description { opacity: .7; margin-left: .5em; font-size: .9em; }
</style></head><body><div class="title">EXPLORER</div>
<div class="header"><span class="codicon codicon-chevron-down"></span>VB6 PROJECTS</div>
${body}
</body></html>`;
}

function pathToFileUrl(file: string): string {
  return `file://${file.split('/').map(encodeURIComponent).join('/')}`;
}

/** Saves the picture with Debian's Chromium; returns why it could not, or undefined. */
export function screenshot(rows: Row[], out: string): string | undefined {
  const chromium = ['/usr/bin/chromium', '/usr/bin/chromium-browser'].find((c) => fs.existsSync(c));
  if (!chromium) return 'no Chromium (apt-get install chromium)';
  const dir = fs.mkdtempSync(path.join(os.tmpdir(), 'arbolet-picture-'));
  try {
    const codicons = path.dirname(require.resolve('@vscode/codicons/dist/codicon.css'));
    const page = path.join(dir, 'tree.html');
    fs.writeFileSync(page, treeHtml(rows, pathToFileUrl(path.join(codicons, 'codicon.css'))));
    fs.mkdirSync(path.dirname(out), { recursive: true });
    const height = 35 + 23 + rows.length * 22 + 8;
    const r = spawnSync(
      chromium,
      [
        '--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
        '--disable-background-networking', '--disable-component-update', '--disable-sync',
        `--user-data-dir=${path.join(dir, 'profile')}`, '--hide-scrollbars', '--force-device-scale-factor=2',
        '--allow-file-access-from-files', `--window-size=360,${height}`, `--screenshot=${out}`, pathToFileUrl(page),
      ],
      { encoding: 'utf8', timeout: 60000 },
    );
    if (r.status !== 0 || !fs.existsSync(out)) return `chromium failed (${r.status ?? r.signal}): ${r.stderr.slice(-400)}`;
    return undefined;
  } finally {
    fs.rmSync(dir, { recursive: true, force: true });
  }
}
