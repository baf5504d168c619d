"""The site: the guides of docs/, the manual pages of the command and an index of the C++ reference."""

project = "vex2"
author = "the authors of vex2"
extensions = ["myst_parser"]
myst_heading_anchors = 3
myst_enable_extensions = ["deflist"]
smartquotes = False  # would change the hyphens of options
html_theme = "furo"
html_title = "vex2"
html_static_path = ["_static"]
html_css_files = ["site.css"]
html_copy_source = False
html_show_sphinx = False
html_show_copyright = False
# The guides show C++, output of the command and command lines.
highlight_language = "text"
html_theme_options = {
    "light_css_variables": {"color-brand-primary": "#0b5394", "color-brand-content": "#0b5394"},
    "dark_css_variables": {"color-brand-primary": "#79c0ff", "color-brand-content": "#79c0ff"},
}
