// Validates glTF files with the glTF validator of the npm registry and prints
// each file's error, warning, info and hint counts and its messages. Exit 0
// when no file has an error, 1 when one has, 2 on wrong usage.
// Usage: node gltf_validate.js VALIDATOR_MODULE_DIR FILE...
'use strict';
const fs = require('fs');
const path = require('path');

async function main(argv) {
    if (argv.length < 2) {
        console.error('usage: node gltf_validate.js VALIDATOR_MODULE_DIR FILE...');
        return 2;
    }
    const validator = require(path.resolve(argv[0]));
    let errors = 0;
    for (const file of argv.slice(1)) {
        const bytes = new Uint8Array(fs.readFileSync(file));
        const report = await validator.validateBytes(bytes, {
            uri: path.basename(file),
            maxIssues: 100,
            externalResourceFunction: () => Promise.reject(new Error('no external resources')),
        });
        const n = report.issues;
        console.log(`${file}: ${n.numErrors} errors, ${n.numWarnings} warnings, ` +
                    `${n.numInfos} infos, ${n.numHints} hints`);
        for (const m of n.messages)
            console.log(`  [${m.severity}] ${m.code} ${m.pointer || ''}: ${m.message}`);
        // A warning (a normal not of unit length, say) fails the check as an error does.
        errors += n.numErrors + n.numWarnings;
    }
    return errors > 0 ? 1 : 0;
}

main(process.argv.slice(2)).then((rc) => process.exit(rc), (e) => {
    console.error(`gltf_validate: ${e && e.message ? e.message : e}`);
    process.exit(1);
});
