"""The faults that are found in small sources: python3 tools/mutants/faults_test.py"""
import unittest

from faults import mutants_of


def lines(text):
    """What a function with this body can become."""
    source = 'namespace a {\nvoid F() {\n  ' + text + '\n}\n}\n'
    return [mutant.becomes for mutant in mutants_of('f.cpp', source)]


class Faults(unittest.TestCase):
    def test_a_comparison_is_moved_by_one_and_turned_round(self):
        self.assertLessEqual({'x = a <= b;', 'x = a >= b;'}, set(lines('x = a < b;')))

    def test_the_brackets_of_a_template_are_no_comparison(self):
        self.assertEqual(lines('std::array<std::vector<int>, kSize> x;  x.size();'),
                         ['std::array<std::vector<int>, kSize> x; ;'])

    def test_boolean_and_bit_operators_are_exchanged(self):
        self.assertIn('x = a || !b;', lines('x = a && !b;'))
        self.assertIn('x = a && b;', lines('x = a && !b;'))
        self.assertIn('x = a | (b >> c);', lines('x = a & (b >> c);'))
        self.assertIn('x = a & (b << c);', lines('x = a & (b >> c);'))

    def test_references_and_pointers_are_no_operators(self):
        self.assertEqual(lines('const T& a = b, *c = d; e = a; e = c;'), [
            'const T& a = b, *c = d; ; e = c;', 'const T& a = b, *c = d; e = a; ;'])

    def test_a_condition_is_negated(self):
        self.assertIn('if (!(a.Is(b))) return;', lines('if (a.Is(b)) return;'))

    def test_a_constant_is_off_by_one(self):
        self.assertLessEqual({'x = 3U;', 'x = 1U;'}, set(lines('x = 2U;')))
        self.assertIn('x = 0x100;', lines('x = 0xFF;'))
        self.assertIn('x = 1.5F;', lines('x = 0.5F;'))
        self.assertIn("x = 10001;", lines("x = 10'000;"))

    def test_what_is_asserted_at_compile_time_is_left_alone(self):
        self.assertEqual(lines('static_assert(kSize == 8);'), [])

    def test_strings_comments_and_directives_are_left_alone(self):
        self.assertEqual([*mutants_of('f.cpp', '#if A > 1\n// 1 + 2\nconstexpr const char* kName = "a < 1";\n#endif\n')],
                         [])

    def test_a_statement_is_left_out(self):
        self.assertIn('Open(); ;', lines('Open(); Close();'))
        self.assertIn('if (a) ;', lines('if (a) return;'))

    def test_a_return_at_the_end_stays(self):
        self.assertEqual(lines('return a;'), [])

    def test_a_lock_is_left_out_and_a_variable_in_use_is_not(self):
        self.assertEqual(lines('const std::lock_guard lock(mutex_); F();')[0], '; F();')
        self.assertNotIn('; return a;', lines('const int a = F(); return a;'))

    def test_a_call_becomes_its_argument(self):
        self.assertIn('x = (a);', lines('x = std::sqrt(a);'))
        self.assertNotIn('x.(a);', lines('x.At(a);'))

    def test_arguments_change_places(self):
        self.assertIn('x.Set(b(1, 2), a);', lines('x.Set(a, b(1, 2));'))

    def test_declarations_have_no_statements_and_no_calls(self):
        self.assertEqual([*mutants_of('f.h', 'class A : public B {\n public:\n  A(int a, int b);\n  void F(int a);\n};\n')],
                         [])

    def test_a_mutant_is_named_by_its_lines(self):
        mutant = [*mutants_of('f.cpp', 'void F() {\n  G(a,\n    b);\n}\n')][-1]
        self.assertEqual((mutant.line, mutant.was, mutant.becomes), (2, 'G(a, b);', 'G(b, a);'))

    def test_shaders_are_sources(self):
        shader = 'float4 main(float2 a : TEXCOORD0) : SV_TARGET\n{\n    a.y = 1.0 - a.y;\n    return Sample(s, a);\n}\n'
        becomes = [mutant.becomes for mutant in mutants_of('f.hlsl', shader)]
        self.assertEqual(becomes, ['a.y = 1.0 + a.y;', 'a.y = 2.0 - a.y;', ';', 'return Sample(a, s);'])


if __name__ == '__main__':
    unittest.main()
