// A language server stand-in for the view's tests: a project tree and symbols it answers with,
// the commands it was sent, and refusals scripted by command name.
import { LspDocumentSymbol, ProjectTreeNode, ServerCommand } from '../src/protocol';
import { TreeServer } from '../src/treeServer';

export class FakeServer implements TreeServer {
  tree: unknown = { nodes: [] };
  symbols = new Map<string, unknown>();
  commands: ServerCommand[] = [];
  refusals = new Map<string, string>();
  treeRequests = 0;
  symbolRequests: string[] = [];
  private listeners: ((project: string | undefined) => void)[] = [];

  async projectTree(): Promise<ProjectTreeNode[]> {
    this.treeRequests++;
    const { validProjectTree } = await import('../src/protocol');
    return validProjectTree(this.tree);
  }
  async documentSymbols(uri: string): Promise<LspDocumentSymbol[]> {
    this.symbolRequests.push(uri);
    const { validSymbols } = await import('../src/protocol');
    const s = this.symbols.get(uri);
    if (s instanceof Error) throw s;
    return validSymbols(s ?? []);
  }
  async executeCommand(command: ServerCommand): Promise<void> {
    this.commands.push(command);
    const reason = this.refusals.get(command.command);
    if (reason) throw Object.assign(new Error(reason), { code: -32803 });
  }
  onTreeChanged(handler: (project: string | undefined) => void): void {
    this.listeners.push(handler);
  }
  announceChange(project?: string): void {
    for (const l of this.listeners) l(project);
  }
}

export const vbp = 'file:///w/Inventory/Inventory.vbp';
export const modStock = 'file:///w/Inventory/modStock.bas';
export const modLegacy = 'file:///w/Inventory/modLegacy.bas';
export const frmMain = 'file:///w/Inventory/frmMain.frm';
export const toolsVbp = 'file:///w/Tools/Tools.vbp';
export const modTools = 'file:///w/Tools/modTools.bas';

function component(name: string, project: string, uri: string, icon = 'module'): ProjectTreeNode {
  return { key: `${name}~P~`, text: name, kind: 'component', bold: false, image: 3, icon, uri, project, children: [] };
}

/** Two projects: Inventory (start-up) with a fixed group and two custom folders, and Tools. */
export function sampleTree(): { nodes: ProjectTreeNode[] } {
  return {
    nodes: [
      {
        key: 'Project~Inventory', text: 'Inventory', kind: 'project', bold: true, image: 1, icon: 'project-startup',
        uri: vbp, project: vbp,
        children: [
          { key: 'Type~Forms~Inventory', text: 'Forms', kind: 'folder', bold: false, image: null, icon: 'folder-closed', project: vbp, custom: false,
            children: [component('frmMain', vbp, frmMain, 'form')] },
          { key: 'Type~Stock Logic~Inventory', text: 'Stock Logic', kind: 'folder', bold: false, image: null, icon: 'custom-folder', project: vbp, custom: true,
            children: [component('modStock', vbp, modStock)] },
          { key: 'Type~Data Access~Inventory', text: 'Data Access', kind: 'folder', bold: false, image: null, icon: 'custom-folder', project: vbp, custom: true,
            children: [component('modLegacy', vbp, modLegacy)] },
          { key: 'Type~Archive~Inventory', text: 'Archive', kind: 'folder', bold: false, image: null, icon: 'custom-folder', project: vbp, custom: true, children: [] },
        ],
      },
      {
        key: 'Project~Tools', text: 'Tools', kind: 'project', bold: false, image: 1, icon: 'project', uri: toolsVbp, project: toolsVbp,
        children: [component('modTools', toolsVbp, modTools)],
      },
    ],
  };
}

export function range(line: number, endLine = line) {
  return { start: { line, character: 0 }, end: { line: endLine, character: 1 } };
}

export function sym(name: string, kind: number, line: number, endLine: number, children: unknown[] = [], detail?: string) {
  return { name, kind, range: range(line, endLine), selectionRange: range(line), children, detail };
}

/** modLegacy: OpenStore holds an If whose End If was lost; CountRows has a clean For. */
export const legacySymbols = [
  sym('OpenStore', 12, 6, 12, [
    sym('If Len(path) = 0 Then', 2, 7, 11, [sym('ERROR - NO end if', 21, 7, 7, [], 'error: unclosed-block')]),
  ]),
  sym('CountRows', 12, 14, 21, [sym('For i = 1 To 10', 2, 16, 20, [sym('For j = 1 To 10', 2, 17, 19)])]),
];

export const stockSymbols = [sym('MAX_ITEMS', 14, 3, 3), sym('StateOf', 12, 16, 25)];
