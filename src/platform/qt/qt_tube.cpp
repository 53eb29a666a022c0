#include "platform/qt/qt_tube.h"

#include "platform/qt/qt_pixels.h"

#include <QElapsedTimer>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>

#include <array>
#include <tuple>
#include <utility>

namespace {

constexpr size_t STAGES = 3;
constexpr GLsizei VERTICES = 3;
constexpr GLint PICTURE_UNIT = 0;
constexpr GLint GLOW_UNIT = 1;
constexpr int64_t NANOSECONDS = 1000; ///< in a microsecond

} // namespace

/// OpenGL with all that is kept there. Red and blue are exchanged on the way there and back, so
/// that the rows of pictures are taken as they are.
class QtTube::Context {
public:
    Context();
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    const std::string& problem() const { return problem_; }
    /// Brings these rows of the picture, and of what is drawn those that depend on them.
    void draw(const QImage& picture, TubeRows changed, const Scaling& how, QImage& drawn,
              TubeRows to_draw);

private:
    /// A texture and what draws into it.
    struct Target {
        GLuint texture = 0;
        GLuint frame = 0;
        QSize size;
    };

    bool open(QSurfaceFormat::RenderableType type, int major, int minor);
    void fit(Target& target, QSize size);
    void compile(TubeLook look);
    GLuint compiled(GLenum kind, const std::string& text);
    void set_uniforms(QSize target, int lines);
    void run(TubeStage stage, const Target& from, const Target& to, TubeRows rows);

    QOffscreenSurface surface_;
    QOpenGLContext context_;
    QOpenGLExtraFunctions* gl_ = nullptr;
    TubeHost host_{.top_first = true};
    std::string problem_;
    std::array<GLuint, STAGES> programs_{};
    TubeLook look_ = TubeLook::off; ///< of the programs
    GLuint vertices_ = 0;
    Target picture_, across_, down_, face_;
};

QtTube::Context::Context() {
    if (open(QSurfaceFormat::OpenGL, 3, 2)) {
        host_.first_line = "#version 150";
    } else if (!open(QSurfaceFormat::OpenGLES, 3, 0)) {
        problem_ = "OpenGL 3 is missing";
        return;
    }
    gl_ = context_.extraFunctions();
    gl_->glGenVertexArrays(1, &vertices_);
    gl_->glBindVertexArray(vertices_);
    for (Target* target : {&picture_, &across_, &down_, &face_}) {
        gl_->glGenTextures(1, &target->texture);
        gl_->glGenFramebuffers(1, &target->frame);
    }
    gl_->glEnable(GL_SCISSOR_TEST);
    compile(TubeLook::soft); // tells whether the texts are understood
}

QtTube::Context::~Context() {
    // What is kept in a context ends with it.
    if (context_.isValid()) context_.doneCurrent();
}

bool QtTube::Context::open(QSurfaceFormat::RenderableType type, int major, int minor) {
    QSurfaceFormat format;
    format.setRenderableType(type);
    format.setVersion(major, minor);
    if (type == QSurfaceFormat::OpenGL) format.setProfile(QSurfaceFormat::CoreProfile);
    context_.setFormat(format);
    if (!context_.create() || context_.format().version() < qMakePair(major, minor)) return false;
    if (!surface_.isValid()) {
        surface_.setFormat(context_.format());
        surface_.create();
    }
    return context_.makeCurrent(&surface_);
}

GLuint QtTube::Context::compiled(GLenum kind, const std::string& text) {
    const GLuint shader = gl_->glCreateShader(kind);
    const char* lines = text.c_str();
    gl_->glShaderSource(shader, 1, &lines, nullptr);
    gl_->glCompileShader(shader);
    GLint good = GL_FALSE;
    gl_->glGetShaderiv(shader, GL_COMPILE_STATUS, &good);
    if (!good) {
        std::array<char, 200> log{};
        gl_->glGetShaderInfoLog(shader, GLsizei(log.size()), nullptr, log.data());
        problem_ = std::string("OpenGL: ") + log.data();
    }
    return shader;
}

void QtTube::Context::compile(TubeLook look) {
    if (std::exchange(look_, look) == look) return;
    for (size_t n = 0; n < STAGES; ++n) {
        gl_->glDeleteProgram(programs_[n]);
        programs_[n] = gl_->glCreateProgram();
        const GLuint vertex =
            compiled(GL_VERTEX_SHADER, tube_vertex_text(host_, TubeStage(n), look));
        const GLuint fragment =
            compiled(GL_FRAGMENT_SHADER, tube_fragment_text(host_, TubeStage(n), look));
        gl_->glAttachShader(programs_[n], vertex);
        gl_->glAttachShader(programs_[n], fragment);
        gl_->glLinkProgram(programs_[n]);
        GLint good = GL_FALSE;
        gl_->glGetProgramiv(programs_[n], GL_LINK_STATUS, &good);
        if (!good && problem_.empty()) problem_ = "OpenGL does not link the picture tube";
        gl_->glDeleteShader(vertex);
        gl_->glDeleteShader(fragment);
        gl_->glUseProgram(programs_[n]);
        gl_->glUniform1i(gl_->glGetUniformLocation(programs_[n], "picture"), PICTURE_UNIT);
        gl_->glUniform1i(gl_->glGetUniformLocation(programs_[n], "glow"), GLOW_UNIT);
    }
}

void QtTube::Context::fit(Target& target, QSize size) {
    if (std::exchange(target.size, size) == size) return;
    gl_->glBindTexture(GL_TEXTURE_2D, target.texture);
    gl_->glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, size.width(), size.height(), 0, GL_RGBA,
                      GL_UNSIGNED_BYTE, nullptr);
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
        gl_->glTexParameteri(GL_TEXTURE_2D, filter, GL_LINEAR);
    }
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
        gl_->glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_EDGE);
    }
    gl_->glBindFramebuffer(GL_FRAMEBUFFER, target.frame);
    gl_->glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target.texture,
                                0);
}

void QtTube::Context::set_uniforms(QSize target, int lines) {
    const GLuint program = programs_[size_t(TubeStage::face)];
    gl_->glUseProgram(program);
    gl_->glUniform2f(gl_->glGetUniformLocation(program, "target"), float(target.width()),
                     float(target.height()));
    gl_->glUniform1f(gl_->glGetUniformLocation(program, "lines"), float(lines));
}

void QtTube::Context::run(TubeStage stage, const Target& from, const Target& to, TubeRows rows) {
    gl_->glBindFramebuffer(GL_FRAMEBUFFER, to.frame);
    gl_->glViewport(0, 0, to.size.width(), to.size.height());
    gl_->glScissor(0, rows.first, to.size.width(), rows.end - rows.first);
    gl_->glUseProgram(programs_[size_t(stage)]);
    gl_->glBindTexture(GL_TEXTURE_2D, from.texture);
    gl_->glDrawArrays(GL_TRIANGLES, 0, VERTICES);
}

void QtTube::Context::draw(const QImage& picture, TubeRows changed, const Scaling& how,
                           QImage& drawn, TubeRows to_draw) {
    if (!context_.makeCurrent(&surface_)) {
        problem_ = "OpenGL does not answer any more";
        return;
    }
    compile(how.tube);
    gl_->glActiveTexture(GL_TEXTURE0 + GLOW_UNIT);
    fit(across_, {TUBE_GLOW.width, TUBE_GLOW.height});
    fit(down_, {TUBE_GLOW.width, TUBE_GLOW.height});
    gl_->glBindTexture(GL_TEXTURE_2D, down_.texture);
    gl_->glActiveTexture(GL_TEXTURE0 + PICTURE_UNIT);
    fit(picture_, picture.size());
    fit(face_, drawn.size());
    set_uniforms(drawn.size(), how.lines);

    gl_->glBindTexture(GL_TEXTURE_2D, picture_.texture);
    gl_->glTexSubImage2D(GL_TEXTURE_2D, 0, 0, changed.first, picture.width(),
                         changed.end - changed.first, GL_RGBA, GL_UNSIGNED_BYTE,
                         picture.constScanLine(changed.first));
    const TubeRows glow = tube_glow_rows(changed, picture.height());
    run(TubeStage::glow_across, picture_, across_, glow);
    run(TubeStage::glow_down, across_, down_, glow);
    run(TubeStage::face, picture_, face_, to_draw);
    gl_->glReadPixels(0, to_draw.first, drawn.width(), to_draw.end - to_draw.first, GL_RGBA,
                      GL_UNSIGNED_BYTE, drawn.scanLine(to_draw.first));
}

QtTube::QtTube() = default;

QtTube::~QtTube() = default;

std::string QtTube::start() {
    if (!context_) context_ = std::make_unique<Context>();
    return context_->problem();
}

void QtTube::stop() {
    context_.reset();
    picture_ = QImage();
    drawn_ = QImage();
}

bool QtTube::is_ready() const { return context_ && context_->problem().empty(); }

int64_t QtTube::take_draw_time() { return std::exchange(draw_time_, 0); }

TubeRows QtTube::draw(const QImage& picture, QSize size, const Scaling& how) {
    QElapsedTimer timer;
    timer.start();
    const bool all = picture.size() != picture_.size() || size != drawn_.size() || how != how_;
    TubeRows changed = {0, picture.height()};
    if (!all) std::tie(changed.first, changed.end) = rows_that_differ(picture, picture_);
    if (changed.first == changed.end) return {};
    if (all) drawn_ = plain_picture(size, Qt::black);
    const TubeRows to_draw =
        all ? TubeRows{0, size.height()}
            : tube_face_rows(changed, picture.height(), size.height(), how.tube);
    picture_ = picture.copy();
    how_ = how;
    context_->draw(picture, changed, how, drawn_, to_draw);
    draw_time_ += timer.nsecsElapsed() / NANOSECONDS;
    return to_draw;
}
