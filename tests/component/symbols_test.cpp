// The dynamic symbol table of the shared library: four functions leave it, and nothing else.
#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

class ElfFile {
public:
    explicit ElfFile(const char* path) {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
    }
    bool IsElf64() const {
        return bytes_.size() > sizeof(Elf64_Ehdr) && std::memcmp(bytes_.data(), ELFMAG, SELFMAG) == 0 &&
               bytes_[EI_CLASS] == ELFCLASS64;
    }
    std::vector<Elf64_Shdr> Sections() const {
        const auto header = At<Elf64_Ehdr>(0);
        std::vector<Elf64_Shdr> sections;
        for (int i = 0; i < header.e_shnum; ++i)
            sections.push_back(At<Elf64_Shdr>(header.e_shoff + static_cast<std::size_t>(i) * header.e_shentsize));
        return sections;
    }
    template <class Record>
    std::vector<Record> Table(const Elf64_Shdr& section) const {
        std::vector<Record> records;
        for (std::size_t i = 0; i < section.sh_size / sizeof(Record); ++i)
            records.push_back(At<Record>(section.sh_offset + i * sizeof(Record)));
        return records;
    }
    std::string Text(const Elf64_Shdr& strings, std::size_t offset) const {
        return bytes_.data() + strings.sh_offset + offset;
    }

private:
    template <class Record>
    Record At(std::size_t offset) const {
        Record record;
        if (offset + sizeof(record) > bytes_.size()) throw std::out_of_range("damaged file");
        std::memcpy(&record, bytes_.data() + offset, sizeof(record));
        return record;
    }
    std::vector<char> bytes_;
};

TEST(SharedLibrary, ExportsFourFunctionsAndNothingElse) {
    const ElfFile file(PIXMORPH_LIBRARY_FILE);
    ASSERT_TRUE(file.IsElf64());
    const auto sections = file.Sections();
    std::set<std::string> exported;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNSYM) continue;
        for (const auto& symbol : file.Table<Elf64_Sym>(section)) {
            const int binding = ELF64_ST_BIND(symbol.st_info);
            if (symbol.st_shndx == SHN_UNDEF ||
                (binding != STB_GLOBAL && binding != STB_WEAK && binding != STB_GNU_UNIQUE))
                continue;
            exported.insert(file.Text(sections[section.sh_link], symbol.st_name));
            EXPECT_EQ(ELF64_ST_TYPE(symbol.st_info), STT_FUNC);
        }
    }
    EXPECT_EQ(exported, (std::set<std::string>{"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer",
                                               "DllUnregisterServer"}));
}

TEST(SharedLibrary, CarriesItsMajorVersionInItsName) {
    const ElfFile file(PIXMORPH_LIBRARY_FILE);
    ASSERT_TRUE(file.IsElf64());
    const auto sections = file.Sections();
    std::string name;
    for (const Elf64_Shdr& section : sections)
        if (section.sh_type == SHT_DYNAMIC)
            for (const auto& entry : file.Table<Elf64_Dyn>(section))
                if (entry.d_tag == DT_SONAME) name = file.Text(sections[section.sh_link], entry.d_un.d_val);
    EXPECT_EQ(name, "libpixmorph.so.1");
}

}  // namespace
