"""Mechanical faults: the places of a C++ or HLSL source that can be changed, each with what stands there afterwards.

There is no parser: the sources are clang-formatted, so that a binary operator has white space on both sides and the angle
bracket of a template has not. What does not compile is drawn again by the caller, so a candidate may be wrong.
"""
import bisect
import re
from dataclasses import dataclass

TOKEN = re.compile(r'''
    (?P<skipped> //[^\n]* | /\*.*?\*/ | ^[ \t]*\#(?:\\\n|[^\n])* | \s+ )
  | (?P<number> 0[xX][\da-fA-F']+\w* | (?:\d[\d']*\.?\d*|\.\d+)(?:[eE][+-]?\d+)?\w* )
  | (?P<text> R"\((?:.*?)\)" | "(?:\\.|[^"\\\n])*" | '(?:\\.|[^'\\\n])*' )
  | (?P<word> [A-Za-z_]\w* )
  | (?P<operator> <<=|>>=|<=>|->|<=|>=|==|!=|&&|\|\||<<|>>|\+\+|--|[-+*/%&|^]=|::|. )
''', re.VERBOSE | re.DOTALL | re.MULTILINE)

BINARY = {
    '==': ['!='], '!=': ['=='], '<': ['<=', '>='], '<=': ['<', '>'], '>': ['>=', '<='], '>=': ['>', '<'],
    '+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'], '%': ['*'], '+=': ['-='], '-=': ['+='], '*=': ['/='], '/=': ['*='],
    '&&': ['||'], '||': ['&&'], '&': ['|'], '|': ['&'], '^': ['&'], '<<': ['>>'], '>>': ['<<'],
    '&=': ['|='], '|=': ['&='], '^=': ['&='],
}
EXCHANGED = {'++': '--', '--': '++', 'true': 'false', 'false': 'true'}
UNARY = {'!', '~', '-'}
# Behind these an operator is unary, and a name with a parenthesis is a call.
EXPRESSION_FOLLOWS = {'(', ',', '=', 'return', '?', '[', '!', *BINARY}
CONTROL = {'if', 'for', 'while', 'switch', 'do', 'else', 'case', 'default', 'try', 'catch', 'return'}
NO_CALLEE = CONTROL | {'sizeof', 'alignof', 'alignas', 'decltype', 'noexcept', 'static_assert', 'requires'}
DECLARING = re.compile(r'(?:(?:const|constexpr|static|thread_local) )*[\w:]+(?:<.*>)?[&*]* (\w+)\s*[;({=\[]', re.DOTALL)
NO_STATEMENT = {'using', 'typedef', 'static_assert', 'struct', 'class', 'enum', 'public', 'private', 'protected'}
SCOPE_OF_NAMES = {'class', 'struct', 'union', 'enum', 'namespace', 'extern'}
PAIRS = {'(': ')', '[': ']', '{': '}'}


@dataclass(frozen=True)
class Fault:
    """The source from start to end is replaced by text."""
    kind: str
    start: int
    end: int
    text: str


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


class Source:
    """A source's tokens, with the partner of each bracket and whether a token belongs to a function's body."""

    def __init__(self, text):
        self.text = text
        self.tokens = [Token(m.lastgroup, m.group(), m.start(), m.end())
                       for m in TOKEN.finditer(text) if m.lastgroup != 'skipped']
        self.partner = {}
        self.scope = []  # of each token, the innermost brace's kind: code, names, values
        self._match_brackets()

    def word(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ''

    def is_code(self, index):
        return self.scope[index] == 'code'

    def _match_brackets(self):
        open_brackets, scopes = [], ['names']
        for index, token in enumerate(self.tokens):
            if token.text == '}' and len(scopes) > 1:
                scopes.pop()
            self.scope.append(scopes[-1])
            if token.text in PAIRS:
                open_brackets.append(index)
                if token.text == '{':
                    scopes.append(self._kind_of_brace(index, scopes[-1]))
            elif token.text in PAIRS.values() and open_brackets:
                partner = open_brackets.pop()
                self.partner[index], self.partner[partner] = partner, index

    def _kind_of_brace(self, index, outer):
        before = self.word(index - 1)
        if self.tokens[index - 1].end == self.tokens[index].start or before in EXPRESSION_FOLLOWS | {'{'}:
            return 'code' if before == ')' else 'values'
        if outer == 'code':
            return 'code'
        begin = index
        while begin > 0 and self.word(begin - 1) not in {';', '{', '}'}:
            begin -= 1
        names = any(self.word(i) in SCOPE_OF_NAMES for i in range(begin, index))
        return 'names' if names and before not in {')', 'const', 'noexcept', 'override'} else 'code'

    def end_of_scope(self, index):
        """The brace that closes the block around a token."""
        while index < len(self.tokens) and self.word(index) != '}':
            index = self.partner.get(index, index) + 1 if self.word(index) in PAIRS else index + 1
        return index


def operators(source):
    for index, token in enumerate(source.tokens):
        around = source.text[token.start - 1:token.start], source.text[token.end:token.end + 1]
        if token.text in BINARY and all(c.isspace() for c in around):
            for text in BINARY[token.text]:
                yield Fault('operator', token.start, token.end, text)
        elif token.text in EXCHANGED:
            yield Fault('operator', token.start, token.end, EXCHANGED[token.text])
        elif token.text in UNARY and source.word(index - 1) in EXPRESSION_FOLLOWS:
            yield Fault('operator', token.start, token.end, '')


def conditions(source):
    for index, token in enumerate(source.tokens):
        if token.text not in {'if', 'while'} or source.word(index + 1) != '(':
            continue
        begin, end = source.tokens[index + 1], source.tokens[source.partner[index + 1]]
        inside = source.text[begin.end:end.start]
        if ' = ' not in inside:  # a declaration cannot be negated
            yield Fault('condition', begin.end, end.start, f'!({inside})')


def constants(source):
    for index, token in enumerate(source.tokens):
        if token.kind != 'number':
            continue
        for step in (1, -1):
            text = _stepped(token.text, step)
            if text is not None:
                yield Fault('constant', token.start, token.end, text)


def _stepped(number, step):
    number = number.replace("'", '')
    hexadecimal = re.fullmatch(r'0[xX]([\da-fA-F]+)([uUlLzZ]*)', number)
    if hexadecimal:
        value = int(hexadecimal[1], 16) + step
        return None if value < 0 else f'0x{value:X}{hexadecimal[2]}'
    integer = re.fullmatch(r'(\d+)([uUlLzZ]*)', number)
    if integer:
        value = int(integer[1]) + step
        return None if value < 0 else f'{value}{integer[2]}'
    real = re.fullmatch(r'([\d.]+(?:[eE][+-]?\d+)?)([fFlL]?)', number)
    return f'{float(real[1]) + 1.0!r}{real[2]}' if real and step > 0 else None


def statements(source):
    """A statement left out. Of declarations only those of a name that nobody uses: locks and their like."""
    for index in range(len(source.tokens)):
        if not source.is_code(index) or not _begins_statement(source, index):
            continue
        first = source.word(index)
        if first in NO_STATEMENT | (CONTROL - {'return'}) | {'{', '}', ';', '~'}:
            continue
        last = _end_of_statement(source, index)
        if last is None or (first == 'return' and not _is_guarded(source, index)):
            continue
        begin, end = source.tokens[index].start, source.tokens[last].end
        declared = DECLARING.match(source.text, begin, end) if first not in {'return', 'delete', 'throw'} else None
        if declared and declared[1] in [source.word(i) for i in range(last, source.end_of_scope(last))]:
            continue
        yield Fault('statement', begin, end, ';')


def _begins_statement(source, index):
    before = source.word(index - 1)
    if before == '{':
        return True
    if before in {'}', 'else', 'do'}:
        return source.word(index) not in {',', ')', ';', '(', '.', '}'}
    if before == ';':
        return _innermost(source, index) != '('  # not the parts of a for
    return before == ')' and _is_guarded(source, index)


def _is_guarded(source, index):
    """Whether a statement stands directly behind if (...), for (...), while (...) or else."""
    if source.word(index - 1) == 'else':
        return True
    head = source.partner.get(index - 1)
    return source.word(index - 1) == ')' and head is not None and (
        source.word(head - 1) in {'if', 'for', 'while'} or source.word(head - 2) == 'if')


def _innermost(source, index):
    depth = index - 1
    while depth >= 0:
        text = source.word(depth)
        if text in PAIRS.values() and depth in source.partner:
            depth = source.partner[depth] - 1
        elif text in PAIRS:
            return text
        else:
            depth -= 1
    return ''


def _end_of_statement(source, index):
    while index < len(source.tokens) and source.word(index) != ';':
        if source.word(index) == '}':
            return None
        index = source.partner.get(index, index) + 1 if source.word(index) in PAIRS else index + 1
    return index if index < len(source.tokens) else None


def calls(source):
    """A call of one argument that becomes the argument, and neighbouring arguments that change places."""
    for index in range(1, len(source.tokens)):
        token = source.tokens[index]
        if token.text != '(' or not source.is_code(index) or index not in source.partner:
            continue
        callee = source.tokens[index - 1]
        if callee.kind != 'word' or callee.text in NO_CALLEE or callee.end != token.start:
            continue
        arguments = _arguments(source, index)
        if len(arguments) == 1:
            first = index - 1
            while source.word(first - 1) == '::':
                first -= 2
            if source.word(first - 1) in EXPRESSION_FOLLOWS:
                yield Fault('call', source.tokens[first].start, token.start, '')
        for (a, b), (c, d) in zip(arguments, arguments[1:]):
            if source.text[a:b] != source.text[c:d]:
                yield Fault('arguments', a, d, source.text[c:d] + source.text[b:c] + source.text[a:b])


def _arguments(source, opening):
    """Where each argument begins and ends in the text."""
    found, index, first = [], opening + 1, opening + 1
    closing = source.partner[opening]
    while index <= closing:
        if index == closing or source.word(index) == ',':
            if index > first:
                found.append((source.tokens[first].start, source.tokens[index - 1].end))
            first = index + 1
        index = source.partner.get(index, index) + 1 if source.word(index) in PAIRS else index + 1
    return found


def faults_of(text):
    source = Source(text)
    asserted = [(source.tokens[i].start, source.tokens[source.partner[i + 1]].end)
                for i, token in enumerate(source.tokens) if token.text == 'static_assert']
    for finder in (operators, conditions, constants, statements, calls):
        for fault in finder(source):
            if not any(begin <= fault.start < end for begin, end in asserted):
                yield fault


@dataclass(frozen=True)
class Mutant:
    """One fault in one file. What it is called stays the same while lines move: the lines before and after."""
    file: str
    line: int
    was: str
    becomes: str
    fault: Fault

    @property
    def name(self):
        return self.file, self.was, self.becomes


def mutants_of(file, text):
    starts = [0, *(m.end() for m in re.finditer('\n', text))]
    for fault in faults_of(text):
        line = bisect.bisect_right(starts, fault.start)
        begin, end = starts[line - 1], text.find('\n', fault.end)
        whole, rest = text[begin:end], text[fault.end:end]
        becomes = text[begin:fault.start] + fault.text + rest
        yield Mutant(file, line, ' '.join(whole.split()), ' '.join(becomes.split()), fault)


def mutated(text, fault):
    return text[:fault.start] + fault.text + text[fault.end:]
