// Runs a Perl program text and answers what it prints; a failed program
// answers null, which is not a string, so the name part stays as it was.
function execute_perl(program) {
    return callClassMethod("NomenPerl", "execute:", [program]);
}

// Many programs at once, for a batch pass: the answers in the same order.
function execute_perl_batch(programs) {
    return callClassMethod("NomenPerl", "executeAll:", [programs]);
}
