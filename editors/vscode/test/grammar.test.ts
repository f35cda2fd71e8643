// The VB6 and project-file grammars, run through VS Code's own TextMate engine.
import { test } from 'node:test';
import * as assert from 'node:assert/strict';
import * as fs from 'node:fs';
import * as path from 'node:path';
import * as oniguruma from 'vscode-oniguruma';
import * as textmate from 'vscode-textmate';

const root = path.join(__dirname, '../..');
let registry: textmate.Registry | undefined;

async function grammar(scope: string): Promise<textmate.IGrammar> {
  if (!registry) {
    const wasm = fs.readFileSync(require.resolve('vscode-oniguruma/release/onig.wasm'));
    await oniguruma.loadWASM(wasm.buffer.slice(wasm.byteOffset, wasm.byteOffset + wasm.byteLength));
    registry = new textmate.Registry({
      onigLib: Promise.resolve({
        createOnigScanner: (p: string[]) => new oniguruma.OnigScanner(p),
        createOnigString: (s: string) => new oniguruma.OnigString(s),
      }),
      loadGrammar: async (name: string) => {
        const file = { 'source.vb6': 'vb6.tmLanguage.json', 'source.vb6-project': 'vb6-project.tmLanguage.json' }[name];
        if (!file) return null;
        return textmate.parseRawGrammar(fs.readFileSync(path.join(root, 'syntaxes', file), 'utf8'), file);
      },
    });
  }
  const g = await registry.loadGrammar(scope);
  assert.ok(g);
  return g;
}

/** Each token of the lines as "text: innermost scope", blanks left out. */
async function tokens(scope: string, text: string): Promise<string[]> {
  const g = await grammar(scope);
  let state = textmate.INITIAL;
  const out: string[] = [];
  for (const line of text.split('\n')) {
    const r = g.tokenizeLine(line, state);
    for (const t of r.tokens) {
      const piece = line.slice(t.startIndex, t.endIndex);
      if (piece.trim() === '') continue;
      out.push(`${piece.trim()}: ${t.scopes[t.scopes.length - 1]}`);
    }
    state = r.ruleStack;
  }
  return out;
}

const scopeOf = async (scope: string, text: string, piece: string) =>
  (await tokens(scope, text)).find((t) => t.startsWith(`${piece}: `))?.split(': ')[1];

test('keywords, procedure names, strings with doubled quotes and numbers with their suffixes', async () => {
  const vb = 'source.vb6';
  assert.deepEqual(await tokens(vb, 'Private Function StateOf(ByVal q As Long) As Integer'), [
    'Private: storage.modifier.vb6',
    'Function: storage.type.procedure.vb6',
    'StateOf: entity.name.function.vb6',
    '(: source.vb6',
    'ByVal: storage.modifier.vb6',
    'q: source.vb6',
    'As: storage.type.vb6',
    'Long: storage.type.vb6',
    '): source.vb6',
    'As: storage.type.vb6',
    'Integer: storage.type.vb6',
  ]);
  const str = await tokens(vb, 's = "say ""hi"" \' no"');
  assert.ok(str.includes('"": constant.character.escape.quote.vb6'), str.join('\n'));
  assert.ok(!str.some((t) => t.includes('comment')), str.join('\n'));
  for (const n of ['&HFF&', '&H1F', '&O17', '&17&', '42%', '3.5#', '1.5E+10', '12@', '7!']) {
    const scope = await scopeOf(vb, `x = ${n}`, n);
    assert.ok(scope?.startsWith('constant.numeric.'), `${n}: ${scope}`);
  }
  assert.equal(await scopeOf(vb, 'x = Left$(s, 2)', '$'), 'storage.type.suffix.vb6');
  assert.equal(await scopeOf(vb, 'If a Then b Else c', 'Else'), 'keyword.control.vb6');
  assert.equal(await scopeOf(vb, 'End If', 'End If'), 'keyword.control.vb6');
  assert.equal(await scopeOf(vb, 'x = #1/2/2000#', '#1/2/2000#'), 'constant.other.date.vb6');
  // A name holding a keyword is not a keyword.
  assert.deepEqual(await tokens(vb, 'Ending = Forward'), ['Ending: source.vb6', '=: keyword.operator.vb6', 'Forward: source.vb6']);
});

test('comments with an apostrophe or Rem, continued by a trailing underscore', async () => {
  const vb = 'source.vb6';
  assert.equal(await scopeOf(vb, "x = 1 ' note", "' note"), undefined);
  const apostrophe = await tokens(vb, "x = 1 ' a note _\ncontinued here\ny = 2");
  assert.ok(apostrophe.includes('continued here: comment.line.apostrophe.vb6'), apostrophe.join('\n'));
  assert.ok(apostrophe.includes('y: source.vb6'), apostrophe.join('\n'));
  assert.equal(await scopeOf(vb, 'Rem old code', 'Rem'), 'keyword.other.rem.vb6');
  assert.equal(await scopeOf(vb, 'Rem old code', 'old code'), 'comment.line.rem.vb6');
  assert.equal(await scopeOf(vb, 'x = 1: Rem why', 'why'), 'comment.line.rem.vb6');
  // Remove is a name, not Rem.
  assert.ok(!(await tokens(vb, 'Remove x')).some((t) => t.includes('comment')));
});

test('#If directives, line continuations and the designer and attribute header', async () => {
  const vb = 'source.vb6';
  assert.equal(await scopeOf(vb, '#If DEBUG_BUILD Then', '#If'), 'keyword.control.directive.vb6');
  assert.equal(await scopeOf(vb, '  #End If', '#End If'), 'keyword.control.directive.vb6');
  assert.equal(await scopeOf(vb, '#Const X = 1', '#Const'), 'keyword.control.directive.vb6');
  assert.equal(await scopeOf(vb, 'x = a + _', '_'), 'punctuation.separator.continuation.line.vb6');
  assert.equal(await scopeOf(vb, 'x = a_', '_'), undefined);
  const header = await tokens(
    vb,
    [
      'VERSION 5.00',
      'Object = "{831FDD16-0C5C-11D2-A9FC-0000F8754DA1}#2.0#0"; "mscomctl.ocx"',
      'Begin VB.Form frmMain',
      '   BeginProperty Font',
      '   EndProperty',
      'End',
      'Attribute VB_Name = "frmMain"',
    ].join('\n'),
  );
  for (const expected of [
    'VERSION: keyword.other.version.vb6',
    '5.00: constant.numeric.version.vb6',
    'Object: keyword.other.object.vb6',
    'Begin: keyword.other.designer.vb6',
    'VB.Form: entity.name.type.control.vb6',
    'frmMain: entity.name.tag.control.vb6',
    'BeginProperty: keyword.other.designer.vb6',
    'EndProperty: keyword.other.designer.vb6',
    'End: keyword.other.designer.end.vb6',
    'Attribute: keyword.other.attribute.vb6',
    'VB_Name: variable.other.attribute.vb6',
  ]) {
    assert.ok(header.includes(expected), `${expected}\n${header.join('\n')}`);
  }
  assert.equal(await scopeOf(vb, 'VERSION 1.0 CLASS', 'CLASS'), 'storage.type.class.vb6');
});

test('project files: sections, keys, values', async () => {
  const p = 'source.vb6-project';
  const t = await tokens(p, '[MS Transaction Server]\nModule=modStock; modStock.bas\nName="Inventory"\nMajorVer=1\nReference=*\\G{00020430-0000-0000-C000-000000000046}#2.0#0#x');
  for (const expected of [
    '[MS Transaction Server]: entity.name.section.vb6-project',
    'Module: variable.other.property.vb6-project',
    '=: keyword.operator.assignment.vb6-project',
    '"Inventory": string.quoted.double.vb6-project',
    '1: constant.numeric.vb6-project',
    '{00020430-0000-0000-C000-000000000046}: constant.other.guid.vb6-project',
  ]) {
    assert.ok(t.includes(expected), `${expected}\n${t.join('\n')}`);
  }
  assert.ok(!t.some((x) => x.startsWith('modStock.bas: constant.numeric')), t.join('\n'));
});
