// Serves packed packages as npm's registry does, on this machine alone:
//
//     node scripts/registry.mjs FOLDER
//
// Prints its port, and ends when standard input ends.
import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { readdirSync, readFileSync } from 'node:fs';
import { createServer } from 'node:http';

const folder = process.argv[2];
const answers = new Map(); // What is answered for a path, given the address that was asked.
for (const file of readdirSync(folder).filter((name) => name.endsWith('.tgz'))) {
  const bytes = readFileSync(`${folder}/${file}`);
  const manifest = JSON.parse(execFileSync('tar', ['-xzOf', `${folder}/${file}`, 'package/package.json']));
  const integrity = `sha512-${createHash('sha512').update(bytes).digest('base64')}`;
  answers.set(`/${file}`, () => bytes);
  answers.set(`/${manifest.name}`, (host) => {
    const dist = { tarball: `http://${host}/${file}`, integrity };
    const versions = { [manifest.version]: { ...manifest, dist } };
    return JSON.stringify({ name: manifest.name, 'dist-tags': { latest: manifest.version }, versions });
  });
}

const server = createServer((request, response) => {
  const answer = answers.get(request.url);
  response.statusCode = answer ? 200 : 404;
  response.end(answer ? answer(request.headers.host) : '{}');
});
server.listen(0, '127.0.0.1', () => console.log(server.address().port));
process.stdin.on('end', () => process.exit()).resume();
