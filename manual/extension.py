"""What the pages need beyond Sphinx: functions and constants that search and links find.

A function or constant is an object of the domain "xl". Search shows an object when its display name
holds the words looked for, so the display name is the name with the description: "merge" finds the
functions that merge cells, and leads to their entries, not just to a page.
"""

from docutils import nodes
from docutils.parsers.rst import Directive, directives
from pygments import token
from pygments.lexer import RegexLexer
from sphinx import addnodes
from sphinx.directives import ObjectDescription
from sphinx.domains import Domain, ObjType
from sphinx.roles import XRefRole
from sphinx.util.docutils import SphinxRole
from sphinx.util.nodes import make_refnode

import calculations


class CalculationLexer(RegexLexer):
    name = "calculation"
    tokens = {
        "root": [
            (r"// →.*", token.Generic.Output),
            (r"//.*", token.Comment),
            (r'"(?:[^"\\]|\\.)*"', token.String),
            (r"\$\w+", token.Name.Variable),
            (r"\b(?:and|or|not|xor)\b", token.Operator.Word),
            (r"\bXL_\w+", token.Name.Function),
            (r"\b(?:Let|If|Case|While|List|GetValue|Substitute)\b", token.Keyword),
            (r"\.?\d[\d.]*", token.Number),
            (r"\w+", token.Text),
            (r"[-+*/^=<>≤≥≠&]", token.Operator),
            (r"[()\[\];{}]", token.Punctuation),
            (r"\s+|.", token.Text),
        ]
    }


def add_object(env, kind, name, about):
    env.get_domain("xl").objects[name] = (env.docname, name.lower(), kind, about)


class Function(ObjectDescription):
    """The entry of a function; its argument is the prototype."""

    option_spec = {"about": directives.unchanged}

    def handle_signature(self, sig, signode):
        name, parenthesis, rest = sig.partition(" (")
        signode += addnodes.desc_name(name, name)
        signode += addnodes.desc_annotation("", parenthesis + rest)
        signode["xl-name"] = name
        return name

    def add_target_and_index(self, name, sig, signode):
        signode["ids"].append(name.lower())
        add_object(self.env, "function", name, self.options["about"])

    def _object_hierarchy_parts(self, signode):
        return (signode["xl-name"],)

    def _toc_entry_name(self, signode):
        return signode["xl-name"]


class ConstantTarget(SphinxRole):
    """Where a constant is described: :xl:define:`XL_ColorRed Colour red, RGB FF0000.`"""

    def run(self):
        name, _, about = self.text.partition(" ")
        add_object(self.env, "constant", name, about)
        return [nodes.literal("", name, ids=[name.lower()])], []


class CalculationDomain(Domain):
    name = "xl"
    label = "calculations"
    object_types = {"function": ObjType("function", "of"), "constant": ObjType("constant", "of")}
    directives = {"function": Function}
    roles = {"of": XRefRole(), "define": ConstantTarget()}
    initial_data = {"objects": {}}

    @property
    def objects(self):
        return self.data["objects"]

    def get_type_name(self, type, primary=False):
        return type.lname

    def clear_doc(self, docname):
        for name in [name for name, found in self.objects.items() if found[0] == docname]:
            del self.objects[name]

    def resolve_xref(self, env, fromdocname, builder, typ, target, node, contnode):
        if target not in self.objects:
            return None
        docname, anchor, _, about = self.objects[target]
        return make_refnode(builder, fromdocname, docname, anchor, contnode, about)

    def get_objects(self):
        for name, (docname, anchor, kind, about) in self.objects.items():
            yield name, f"{name}: {about}", kind, docname, anchor, 0


class Calculation(Directive):
    """A calculation of a guide, by the guide's file and the number of the calculation in it."""

    required_arguments = 2

    def run(self):
        path = calculations.GUIDES / f"{self.arguments[0]}.calc"
        self.state.document.settings.env.note_dependency(str(path))
        _, found = calculations.read_calculations(path)
        text = found[int(self.arguments[1]) - 1].shown()
        return [nodes.literal_block(text, text, language="calculation")]


def setup(app):
    app.add_lexer("calculation", CalculationLexer)
    app.add_domain(CalculationDomain)
    app.add_directive("calculation", Calculation)
    return {"parallel_read_safe": True, "parallel_write_safe": True}
