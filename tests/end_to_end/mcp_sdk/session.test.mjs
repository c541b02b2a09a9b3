// An agent's day with vell: the official client starts `vell mcp`, the application comes and goes.
// usage: VELL=… VELL_HEADLESS=… node --test .
import assert from 'node:assert/strict';
import { spawn, spawnSync } from 'node:child_process';
import { copyFileSync, existsSync, mkdirSync, mkdtempSync, realpathSync, rmSync } from 'node:fs';
import { once } from 'node:events';
import { join } from 'node:path';
import { test } from 'node:test';
import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import {
  ResourceListChangedNotificationSchema, ResourceUpdatedNotificationSchema,
} from '@modelcontextprotocol/sdk/types.js';

const home = realpathSync(mkdtempSync('/tmp/vell-mcp-')); // $TMPDIR may be too long for a home's socket
const env = { HOME: home, PATH: process.env.PATH };
const plans = join(home, 'my plans.vell');
const notRunning = /^Vell\.app must be running for CLI\/MCP access\./;

/** Waits until the condition holds; the notices that come meanwhile may bring it about. */
async function until(what, condition) {
  for (let tries = 0; tries < 400; ++tries) {
    const result = await condition();
    if (result) return result;
    await new Promise((resolve) => setTimeout(resolve, 25));
  }
  assert.fail(`never happened: ${what}`);
}

async function startApplication(...files) {
  const application = spawn(process.env.VELL_HEADLESS, files, { env, stdio: 'inherit' });
  const socket = join(home, 'Library/Containers/app.vell.Vell/Data/cli.sock');
  await until('the application serves', () => existsSync(socket));
  return async () => {
    application.kill('SIGTERM');
    await once(application, 'exit');
  };
}

/** A client, the notices it got, and what it takes to call a tool. */
async function startClient() {
  const client = new Client({ name: 'test', version: '1' });
  const notices = [];
  client.setNotificationHandler(ResourceListChangedNotificationSchema, () => notices.push('list_changed'));
  client.setNotificationHandler(ResourceUpdatedNotificationSchema, ({ params }) => notices.push(params.uri));
  await client.connect(new StdioClientTransport({ command: process.env.VELL, args: ['mcp'], env, stderr: 'inherit' }));
  const call = async (name, args, options) => {
    const result = await client.callTool({ name, arguments: args }, undefined, options);
    const [{ type, text }] = result.content;
    assert.equal(type, 'text');
    return { failed: result.isError === true, text };
  };
  const tool = async (name, args, options) => {
    const { failed, text } = await call(name, args, options);
    assert.equal(failed, false, `${name}: ${text}`);
    return text;
  };
  const json = async (name, args) => JSON.parse(await tool(name, args));
  const resources = async () => (await client.listResources()).resources.map(({ name }) => name);
  return { client, notices, call, tool, json, resources };
}

test.after(() => {
  spawnSync(process.env.VELL_HEADLESS, ['stop'], { env }); // the one that was started on the way
  rmSync(home, { recursive: true, force: true, maxRetries: 5 });
});
mkdirSync(join(home, 'Library/Containers/app.vell.Vell/Data'), { recursive: true });

test('an agent works through a day', { timeout: 60_000 }, async (t) => {
  const { client, notices, call, tool, json, resources } = await startClient();
  let stop;

  await t.test('the host starts, the application does not run', async () => {
    assert.equal(client.getServerVersion().name, 'vell');
    assert.equal((await client.listTools()).tools.length, 17);
    assert.deepEqual(await json('vell_get_outlines'), []);
    assert.deepEqual(await json('vell_get_editors'), []);
    assert.match((await call('vell_get_commands')).text, notRunning);
    assert.match(await tool('vell_outline_path_check', { path: '//task' }), /^-- Parse Tree --/);
    await assert.rejects(client.readResource({ uri: 'vell://current-outline' }), /must be running/);
    await assert.rejects(client.callTool({ name: 'nope' }), /-32602.*Unknown tool: nope/);
  });

  await t.test('the application starts, and is seen', async () => {
    copyFileSync(new URL('../../../samples/groceries.vell', import.meta.url), plans);
    stop = await startApplication(plans);
    t.after(() => stop());
    await until('the outline is listed', async () => (await resources()).length === 2);
    assert.ok(notices.includes('list_changed'));
    assert.ok(notices.includes('vell://current-outline'));
    const [outline] = await json('vell_get_outlines');
    const uri = 'vell://file/' + encodeURIComponent(plans);
    const [{ text }] = (await client.readResource({ uri })).contents;
    assert.equal(text, JSON.parse(await tool('vell_get_outline', { outline: outline.persistentId, output: 'markdown' })));
  });

  await t.test('an untitled outline is saved, and read under its new name', async () => {
    const { persistentId } = await json('vell_create_outline', {});
    await json('vell_create_row', { outline: persistentId, markdown: 'kept' });
    await until('it is listed', async () => (await resources()).includes('Untitled 1'));
    const path = join(home, 'renamed 100%.vell');
    notices.length = 0;
    const script = '(path) => vell.frontmostOutline.save(path)';
    assert.equal((await json('vell_evaluate_script', { script, input: path })).displayName, 'renamed 100%.vell');
    await until('it is listed anew', async () => (await resources()).includes('renamed 100%.vell'));
    assert.ok(!(await resources()).includes('Untitled 1'));
    const [{ text }] = (await client.readResource({ uri: 'vell://file/' + encodeURIComponent(path) })).contents;
    assert.match(text, /kept/);
    assert.deepEqual(notices, ['list_changed']);
    assert.deepEqual(await json('vell_close_outline', {}), { closed: true });
    await until('it is gone', async () => (await resources()).length === 2);
  });

  await t.test('every tool that changes an outline does', async () => {
    const created = await json('vell_create_outline', {});
    assert.equal(created.fileURL, null);
    await until('the new outline is listed', async () => (await resources()).length === 3);
    const outline = created.persistentId;
    const first = await json('vell_create_row', { outline, markdown: '# First' });
    const rows = await json('vell_create_rows', { outline, markdown: '- a\n  - b\n- c', after: String(first.id) });
    assert.equal(rows.length, 3);
    const [a, , c] = rows.map(({ id }) => String(id));
    const [updated] = await json('vell_update_rows', { outline, rows: [c], text: [{ string: 'C', attrs: { strong: '' } }] });
    assert.deepEqual(updated.row.text, [{ string: 'C', attrs: { strong: '' } }]);
    await json('vell_move_rows', { outline, rows: [c], before: a });
    await json('vell_update_editor', { outline, collapse: [a], selectRow: c });
    const [editor] = await json('vell_get_editors');
    assert.equal((await json('vell_get_editor', { editor: editor.id })).outlineId, outline);
    assert.ok((await json('vell_get_commands')).length > 0);
    const [performed] = await json('vell_evaluate_commands', { ids: ['row:toggle-done'] });
    assert.equal(performed.id, 'row:toggle-done');
    assert.equal(await json('vell_evaluate_script', { script: '(input) => input + 1', input: 'n' }), 'n1');
    assert.deepEqual(await json('vell_delete_rows', { outline, rows: [a] }), { deleted: 2 });
    assert.match((await call('vell_get_outline', { refs: ['//task['] })).text, /^Vell error /);
    assert.deepEqual(await json('vell_close_outline', { outline, discard: true }), { closed: true });
    await until('the closed outline is gone', async () => (await resources()).length === 2);
  });

  await t.test('the application restarts', async () => {
    await stop();
    await until('nothing is open', async () => (await resources()).length === 1);
    assert.match((await call('vell_get_commands')).text, notRunning);
    stop = await startApplication(plans);
    assert.ok((await json('vell_get_commands')).length > 0);
    await until('the outline is listed again', async () => (await resources()).length === 2);
  });
  await client.close();
});

test('opening starts the application and tells of the waiting', { timeout: 60_000 }, async () => {
  const { client, tool, json } = await startClient();
  const path = join(home, 'new outline.md');
  const stop = await startApplication();
  const created = await json('vell_create_outline', { path });
  assert.equal(decodeURI(new URL(created.fileURL).pathname), path);
  await stop();
  const progress = [];
  const opened = JSON.parse(await tool('vell_open_outline', { path }, { onprogress: (each) => progress.push(each) }));
  assert.equal(opened.displayName, created.displayName);
  assert.ok(progress.length > 0);
  await client.close();
});
