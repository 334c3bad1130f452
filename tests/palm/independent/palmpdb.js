// Handheld databases as the library palm-pdb sees them, as lines of text, and back.
//
//   node palmpdb.js tell FILE...   what the database files hold
//   node palmpdb.js make LINES     makes the files that a text of the same lines tells of
//
// A database begins with "file PATH" and "kind PDB" or "kind PRC"; blocks and data are hex, "-" for none.
'use strict';

const fs = require('fs');

let palm;
try {
  palm = require('palm-pdb');
} catch (missing) {
  console.error('palm-pdb is not installed. It needs `npm ci` beside tests/palm/independent/package.json;');
  console.error('the CTest test PalmPdb.IsInstalled does that in the build folder.');
  process.exit(1);
}

const DatabaseFlags = [
  'resDB', 'readOnly', 'appInfoDirty', 'backup', 'okToInstallNewer', 'resetAfterInstall', 'copyPrevention',
  'stream', 'hidden', 'launchableData', 'recyclable', 'bundle', 'open'
];
const RecordFlags = ['delete', 'dirty', 'busy', 'secret'];

const hex = (bytes) => (bytes && bytes.length > 0 ? bytes.toString('hex') : '-');
const bytes = (text) => (text === '-' ? Buffer.alloc(0) : Buffer.from(text, 'hex'));
const flags = (names, of) => names.filter((name) => of[name]).join(',') || '-';
const block = (content) => hex(content && content.serialize());

function tell(path) {
  const file = fs.readFileSync(path);
  const isResources = palm.DatabaseHdrType.from(file).attributes.resDB;
  const database = (isResources ? palm.RawPrcDatabase : palm.RawPdbDatabase).from(file);
  const header = database.header;
  const lines = [
    `file ${path}`,
    `kind ${isResources ? 'PRC' : 'PDB'}`,
    `name ${header.name}`,
    `flags ${flags(DatabaseFlags, header.attributes)}`,
    `version ${header.version}`,
    `created ${header.creationDate.value.toISOString()}`,
    `modified ${header.modificationDate.value.toISOString()}`,
    `backup ${header.lastBackupDate.value.toISOString()}`,
    `modification ${header.modificationNumber}`,
    `type ${header.type}`,
    `creator ${header.creator}`,
    `seed ${header.uniqueIdSeed}`,
    `appinfo ${block(database.appInfo)}`,
    `sortinfo ${block(database.sortInfo)}`
  ];
  for (const { entry, data } of database.records) {
    lines.push(
      isResources
        ? `resource ${entry.type} ${entry.resourceId} ${hex(data)}`
        : `record ${entry.uniqueId} ${entry.attributes.category} ${flags(RecordFlags, entry.attributes)} ${hex(data)}`
    );
  }
  return lines;
}

function setFlags(of, names) {
  if (names === '-') return;
  for (const name of names.split(',')) of[name] = true;
}

function timestamp(text) {
  const date = new palm.DatabaseTimestamp();
  date.value = new Date(text);
  date.epochType = 'pdb';
  return date;
}

function make(lines) {
  let path, database;
  const finish = () => database && fs.writeFileSync(path, database.serialize());
  const verbs = {
    file: (text) => {
      finish();
      path = text;
    },
    kind: (text) => (database = text === 'PRC' ? new palm.RawPrcDatabase() : new palm.RawPdbDatabase()),
    name: (text) => (database.header.name = text),
    flags: (text) => setFlags(database.header.attributes, text),
    version: (text) => (database.header.version = Number(text)),
    created: (text) => (database.header.creationDate = timestamp(text)),
    modified: (text) => (database.header.modificationDate = timestamp(text)),
    backup: (text) => (database.header.lastBackupDate = timestamp(text)),
    modification: (text) => (database.header.modificationNumber = Number(text)),
    type: (text) => (database.header.type = text),
    creator: (text) => (database.header.creator = text),
    seed: (text) => (database.header.uniqueIdSeed = Number(text)),
    appinfo: (text) => (database.appInfo.value = bytes(text)),
    sortinfo: (text) => (database.sortInfo.value = bytes(text)),
    record: (text) => {
      const [id, category, names, data] = text.split(' ');
      const record = new palm.RawPdbRecord();
      record.entry.uniqueId = Number(id);
      record.entry.attributes.category = Number(category);
      setFlags(record.entry.attributes, names);
      record.data = bytes(data);
      database.records.push(record);
    },
    resource: (text) => {
      const [type, id, data] = text.split(' ');
      const resource = new palm.RawPrcRecord();
      resource.entry.type = type;
      resource.entry.resourceId = Number(id);
      resource.data = bytes(data);
      database.records.push(resource);
    }
  };
  for (const line of lines) {
    const space = line.indexOf(' ');
    verbs[line.slice(0, space)](line.slice(space + 1));
  }
  finish();
}

const [mode, ...paths] = process.argv.slice(2);
if (mode === 'tell') {
  for (const path of paths) console.log(tell(path).join('\n'));
} else if (mode === 'make' && paths.length === 1) {
  make(fs.readFileSync(paths[0], 'utf8').split('\n').filter((line) => line !== ''));
} else {
  console.error('usage: node palmpdb.js tell FILE... | make LINES');
  process.exit(2);
}
