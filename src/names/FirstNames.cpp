#include "names/NameTables.h"

namespace tavi {
namespace {

// clang-format off
/// See NameTables.h.

constexpr std::string_view kRows[] = {
    "John/Johnny/Jack/Jock/Jon/Johnnie/Johan/Johann/Johannes/Ioan/Jonny/Sion/Hanno/Jonty/Yannis/Jens/Janek/Ianto/"
    "Janos/Joao William/Will/Bill/Billy/Willie/Wills/Willy/Wilhelm/Guillaume/Willem/Wiliam/Guillermo/Guglielmo/Wim/"
    "Wilmot/Uilleam/Bilbo/Wullie/Willam/Billie/Gwil/Wil David/Dave/Davy/Davie/Dai/Davey/Davide/Dawud/Daud James/"
    "Jim/Jimmy/Jamie/Jem/Jas/Jimmie/Jamesie/Jacques/Iago/Jacomo/Jaymes Robert/Bob/Bobby/Rob/Robbie/Bert/Rab/Rabbie/"
    "Roberto/Bobbie/Bertie/Robb/Dob/Raibeart/Robby Michael/Mike/Mick/Micky/Mickey/Mikey/Mitch/Miguel/Micheal/"
    "Michel/Michele/Mikhail/Mischa/Micha/Meical/Mihangel/Michal/Mikael/Michail/Miceal Margaret/Maggie/Meg/Peggy/"
    "Peg/Marge/Margie/Madge/Mags/Marguerite/Margarita/Gretchen/Maggy/Mamie/Marget/Mag/Margret/Metta/Margaretta/"
    "Meggie/Gretel/Margit/Margrit/Margarete/Margherita/Magge/Meta/Maisy/Mysie/Marged/Mared/Margarethe/Margriet/"
    "Peig/Marguerita/Margo/Meggy/Retta/Peigi/Malgorzata Mary/Polly/Moll/Mae/Mally/Maire/Mairi/Mari/Moya/Marya/Poll/"
    "Mair/Malia/Marija/Miren/Mhairi/Mhari Elizabeth/Liz/Lizzie/Betty/Bess/Bessie/Betsy/Libby/Eliza/Lizzy/Elisabeth/"
    "Lisbeth/Bette/Liza/Lizbeth/Else/Lilibet/Betsey/Buffy/Babette/Ilse/Elzbieta/Lise/Elisabetta/Ealasaid/Bettie/"
    "Libbie/Lisette/Bettina/Lillibet/Elisabet/Elsbeth/Bethia/Tetty/Elizabeta/Lisel Catherine/Cathy/Kate/Katie/"
    "Kathy/Kath/Kathryn/Katharine/Kit/Kitty/Cath/Cathie/Katy/Kathie/Katherine/Katrina/Catrin/Katarina/Kathleen/"
    "Caterina/Catharine/Kat/Cathryn/Katya/Kathrin/Kitti/Catalina/Catarina/Katarzyna/Katja/Rina/Katrin/Ekaterina/"
    "Catrina/Kattie/Cate/Katalin/Kadie/Cathleen/Kathlyn/Kathlene/Cathrine/Kathrine/Catherina/Katerina/Katharina",
    "Patricia/Pat/Patsy/Trish/Tricia/Patti/Trisha/Patty/Paddy/Pattie/Patrice/Patrizia/Pats/Tish Peter/Pete/Pedro/"
    "Petey/Pierre/Piotr/Pieter/Pietro/Petrus/Pyotr/Petros/Pearce/Peadar/Peder/Pierce/Per Christopher/Chris/Kester/"
    "Kris/Topher/Christy/Christoph/Kristofer/Cristobal/Christophe/Toph Richard/Dick/Rick/Ricky/Rich/Richie/Dickie/"
    "Dickon/Hick/Ricardo/Riccardo/Rickie/Dicky/Rickard/Ritchie/Ryszard Thomas/Tom/Tommy/Thom/Tam/Tomas/Tammy/"
    "Tommie/Tomos/Tomasso/Tamlane/Twm/Tomasz/Massey Charles/Charlie/Chas/Chuck/Chip/Chay/Charley/Carolus/Siarl/"
    "Chaz/Chuckie Joseph/Joe/Josef/Giuseppe/Yosef/Jos/Beppe/Pepe/Iosif/Seosamh/Jozef/Joop/Zef Anthony/Tony/Ant/"
    "Antony/Anton/Antoine/Antonio/Antonius/Toni/Antonin George/Georgie/Geordie/Jorge/Georg/Dod/Doddie/Giorgio/"
    "Georges/Georgios/Yuri/Joris/Jerzy/Siors/Dode/Seoirse Edward/Ed/Eddie/Eddy/Ned/Neddy/Ted/Teddy/Eduard/Eduardo/"
    "Edouard/Edoardo/Edvard/Duarte",
    "Susan/Sue/Susie/Suzanne/Susanna/Sukie/Suzie/Sukey/Susannah/Suzy/Susanne/Suzanna/Zuzana/Su/Susy/Sanna/Sanne/"
    "Suky/Suzannah/Suzan/Suzette/Shoshana/Susana/Suze/Zsuzsanna/Zuzanna/Zsa Ann/Anne/Annie/Anna/Nan/Nanny/Ana/Nana/"
    "Anny/Nannie/Ania Jean/Jeanie/Jeannie/Jeanne/Jeane/Jinny/Gene/Genie Christine/Chrissie/Tina/Christina/Chrissy/"
    "Kristine/Kristina/Kristin/Christiane/Crissy/Teenie/Xina/Teeny/Kirstie/Christie/Chrystine/Cristina/Christin/"
    "Krystyna/Kristen/Stina/Chrystina Stephen/Steve/Stevie/Steven/Stephan/Stefan/Ste/Steffan/Etienne/Esteban/"
    "Stefano/Istvan/Stevan/Stefanos/Stevo/Szczepan/Steph/Steffen Andrew/Andy/Drew/Dandy/Andre/Andreas/Anders/"
    "Andrej/Andrei/Anderson/Andras/Andries Alexander/Alex/Alec/Alick/Sandy/Alexandre/Alessandro/Alejandro/Sasha/"
    "Xander/Zander/Sawney/Aleck/Eck/Sandor/Alexandros/Aleksander/Alexei Samuel/Sam/Sammy/Sammie/Samuele Daniel/Dan/"
    "Danny/Dannie/Deiniol/Daniele/Daniil/Danyal Matthew/Matt/Matty/Mat/Mattie/Mathew/Mathieu/Matteo/Mateo/Mateusz/"
    "Matthaus/Mathis",
    "Nicholas/Nick/Nicky/Nic/Klaus/Claus/Nicolas/Nickolas/Nico/Nikolai/Nikos/Niklas/Nicol/Nils/Nikolas/Mikolaj "
    "Henry/Hal/Hank/Henri/Hen/Heinrich/Enrico/Enrique/Hendrik/Henrik/Harri/Henryk Jennifer/Jenny/Jen/Jennie/Jenni/"
    "Jenn/Jenifer/Jeni/Jenefer Jane/Janie/Jayne/Janey/Jessie/Jain/Jehane Sarah/Sally/Sadie/Sal/Sara/Sallie/Sairey/"
    "Sari/Sarra/Sarai/Zarah/Sarita Helen/Nell/Nellie/Ellen/Helene/Nelly/Helaine/Eleni/Hellen/Halina Dorothy/Dot/"
    "Dottie/Dolly/Dorothea/Dotty/Thea/Dolley/Dodie/Doll/Dodo/Dorothee/Dorothie/Dorit/Dorethy Joan/Joanie/Joni/"
    "Joann/Juanita/Joane/Jone Joanna/Jo/Ioanna/Jojo/Hanna/Johanne/Joana/Joey/Joanne Barbara/Barb/Barbie/Babs/"
    "Babbie/Barbra/Bab/Varvara/Barby",
    "Pamela/Pam/Pammie/Pammy/Pamella/Pamelia Jacqueline/Jackie/Jacqui/Jacky/Jaqueline/Jacquie/Jacquelyn/Jacki/"
    "Jaclyn/Jacquetta/Jacaline/Jackey/Jackalyn Frances/Fran/Fanny/Frankie/Francie/Fannie/Franny/Frannie/Cissie/"
    "Francoise/Fanni/Franziska/Fronie/Sis Francis/Frank/Frans/Franz/Francesco/Francisco/Francois/Paco/Ffransis/"
    "Franciscus Kenneth/Ken/Kenny/Kent/Cennydd/Kennith/Kenrick/Kennet Ronald/Ron/Ronnie/Ronny/Ranald/Ronan Donald/"
    "Don/Donnie/Donal/Doughal/Donny Frederick/Fred/Freddie/Freddy/Fritz/Federico/Frederic/Friedrich/Fredrik/Frits "
    "Albert/Albie/Alberto/Adalbert/Elbert/Albrecht/Alberic Arthur/Art/Artie/Arturo/Artur",
    "Alfred/Alf/Alfie/Alfredo Ernest/Ernie/Ern/Ernst/Ernesto Harold/Harald Leonard/Len/Lenny/Lennie/Leonardo/"
    "Leonhard/Lenard/Lennart Terence/Terry/Tel/Terrence/Terance/Terrance Raymond/Ray/Raymund/Ramon/Raimondo/"
    "Redmond/Raimund Philip/Phil/Pip/Phillip/Philippe/Felipe/Filip/Filippo/Phill/Phip/Philipp Martin/Marty/Mart/"
    "Martyn/Martijn/Martino/Marten/Martinus Victoria/Vicky/Vicki/Tori/Vick/Vikki/Tory/Vickie/Vita/Queenie/Vic/"
    "Toria/Viktoria Valerie/Val/Valery/Vallie/Valeria/Valarie",
    "Deborah/Deb/Debbie/Debra/Debs/Debby/Debora/Debi/Devorah/Debbi Rebecca/Becky/Becca/Bec/Beck/Beckie/Rebekah/"
    "Becki/Reba/Bex/Rivka/Rebeka/Rebeca Rachel/Rae/Rach/Shelly/Rachael/Racheal/Raquel/Rachelle/Rahel/Ros/Rochelle/"
    "Raelene Judith/Judy/Judi/Judie/Jutta/Yehudit/Judyth/Juditha Sandra/Sandie/Sandi/Zandra/Saundra/Sandre Linda/"
    "Lin/Lindy/Lyn/Lynda/Lindi/Lindie Carol/Carole/Caryl/Karol/Karole/Carola Caroline/Caro/Carrie/Carolyn/Line/"
    "Lina/Carolina/Carlyn/Karoline/Caddie/Carolyne/Karolina/Karolyn/Carline/Carolann/Carolanne Janet/Netta/Jannet/"
    "Seonaid/Jinty/Janetta/Jenet/Jannette/Jess Gillian/Gill/Jill/Gilly/Jillian/Gilian/Jilly/Gillie",
    "Angela/Angie/Ange/Angel/Angelia/Angele/Angy Teresa/Tess/Tessa/Theresa/Terri/Tessie/Tracy/Teri/Therese/Tressa/"
    "Resi/Treeza/Terese/Tereza/Treasa/Terrie Alison/Ali/Allie/Ally/Allison/Alisson/Alyson/Aly Amanda/Mandy/Manda/"
    "Mandi/Mandie/Amandine Samantha/Sami/Samanta Benjamin/Ben/Benny/Benji/Benjie/Benj/Benn Jonathan/Jonnie/Nathan/"
    "Jonathon/Johnathan/Yonatan Timothy/Tim/Timmy/Timmie/Timo/Timotheus/Timoteo Gerald/Gerry/Jerry/Ger/Jerrold/"
    "Garald/Gerallt/Geraldo/Jerald Geoffrey/Geoff/Jeff/Jeffrey/Jeffery/Geoffry/Jeffers/Godfrey/Joffrey/Gottfried",
    "Roger/Rog/Rodge/Hodge/Rodger/Rogerio/Ruggero/Hodgkin Douglas/Doug/Dougie/Duggie Walter/Wally/Wal/Walt/Watt/"
    "Walther/Wat/Gualtiero/Wouter/Wattie Stanley/Stan Laurence/Larry/Laurie/Lawrence/Lauri/Lorenzo/Lawrie/Loz/Lars/"
    "Laurent/Lorenz/Lauritz/Larrance/Lon/Laurens Vincent/Vin/Vince/Vinnie/Vinny/Vincenzo/Vincente/Vinzenz Patrick/"
    "Padraig/Paddie/Padraic/Patricio/Pauric/Podge Nicola/Nikki/Nickie/Niki/Nichola/Nicki/Nicolette/Nicoletta/Nikky/"
    "Nik Stephanie/Stefanie/Stephany/Stephie/Steffi/Stefania/Stephania/Stephani Josephine/Josie/Josefine/Josepha/"
    "Posy/Fifi/Jozefina/Josephina/Pepita/Fina/Josette/Josefa/Josefina/Josey",
    "Winifred/Win/Winnie/Winne/Gwenfrewi/Winnifred/Wynn/Oona Florence/Flo/Florrie/Flossie/Floss/Flory/Florie/Floy "
    "Eleanor/Ellie/Elinor/Lenore/Eleanora/Elly/Leonore/Elenor/Eleonora/Eleanore Isabel/Bel/Bella/Belle/Izzy/Isobel/"
    "Isabella/Isabelle/Isa/Ishbel/Tibbie/Bell/Ib/Isabell/Iseabail/Isobelle/Isbel/Ysabel/Izabela/Issy/Izzie/"
    "Isobella/Isabeau/Nibby/Tib Beatrice/Bea/Trixie/Beatrix/Bee/Beattie/Trix/Tris/Beatriz/Betrys Edith/Edie/Edyth/"
    "Edy/Ede/Edythe/Edit/Editha Emily/Em/Millie/Emmie/Emilie/Emmy/Milly/Emilia/Emeline/Emelie Emma Alice/Alys/"
    "Elsie/Alyce/Alis/Alisia/Lecia Abigail/Abby/Abbie/Abi/Gayle/Abbigale/Abigale",
    "Charlotte/Lottie/Lotte/Lotta/Tottie/Char/Carlotta/Sharlotte/Lotty/Charlotta Georgina/Gina/Georgiana/"
    "Georgianna/Georgette/Georgine/Ina Louise/Lou/Louisa/Lulu/Luisa/Louie/Lois/Ouida/Heloise/Louisia/Luise/Lula "
    "Diana/Di/Dee/Diane/Dianna/Didi/Dianne/Dyan/Diann/Dyanne Constance/Connie/Con/Constantia/Constanza/Constancia/"
    "Konstanze Virginia/Ginny/Ginger/Ginnie/Virginie/Virgie/Geena Veronica/Vonnie/Roni/Veronique/Veronika/Vron/"
    "Weronika/Verity Yvonne/Von/Evonne/Ivonne/Yve Penelope/Penny/Pen/Pennie/Peni Rosemary/Rosie/Ro/Rosemarie/Rosey",
    "Roberta Wilhelmina/Willa/Minnie/Mina/Min/Elma/Helmi/Minna/Mimi/Vilma/Guillemette Matilda/Tilly/Tilda/Mathilda/"
    "Maude/Tillie/Mathilde/Till Martha/Marthe/Marta/Martie Agnes/Aggie/Nessie/Nessa/Nest/Inez/Ines/Senga/Annis/"
    "Agnese/Annes Esther/Hetty/Essie/Ester/Hettie/Esta/Etty/Ettie Theodore/Theo/Theodor/Tudor/Teodoro/Feodor "
    "Edmund/Edmond/Edmondo Eugene/Eugen/Eugenio Archibald/Archie/Archy/Arch/Baldie",
    "Barnabas/Barnaby/Barney/Barny Bernard/Bernie/Bernhard/Bernardo/Barnard Bertram/Bertrand Zachary/Zac/Zak/Zack/"
    "Zach/Zachariah/Zechariah/Zachery/Zacharias Leslie/Les Margery/Marjory/Marjorie/Jorie Nora/Norah/Nonie Melanie/"
    "Mel/Melany/Melaine/Mellie/Lanie/Melony Rodney/Rod/Roddy Malcolm/Mal/Malc/Malcom/Calum/Mac",
    "Nathaniel/Nat/Nate/Nathanael Gwendolen/Gwen/Gwendoline/Gwenda/Gwendolyn/Gwenny/Gwennie Lena Eileen/Eily/Ilene/"
    "Eilene/Eibhlin/Aileen/Aileene Dinah/Dina/Deena Elaine/Lainey/Ellaine/Elayne/Laine/Elain/Elane/Eleyne Lorraine/"
    "Lori/Loraine/Lorrie/Raine/Lorain Alan/Al/Alun/Allan/Alain/Alyn Brian/Bryan/Bri/Bryant/Brien/Briant Colin/Col/"
    "Collin",
    "Derek/Del/Derrick/Deryck/Dirk/Dietrich Keith/Kieth Mark/Marcos/Marek Paul/Pauly/Pablo/Paolo/Pol/Paulus/Pavel/"
    "Pal/Pauley/Paulo/Pawel Kevin/Kev/Kevan/Kevyn/Caoimhin Ian/Iain/Eian Gary/Garry/Gari Neil/Neal/Niall/Nial/"
    "Neill/Neale/Neils Simon/Sim/Simeon/Symon/Shimon/Simmy Adam/Adamo/Addy/Edom",
    "Craig Jason/Jace/Jay Lee/Leigh Darren/Daren/Daz/Darran/Darrin Wayne Karen/Kaz/Karin/Caron/Caren/Karyn/Karan/"
    "Karon/Carin/Kari/Karena Julie/Juli Tracey/Trace/Tracie/Traci/Trasey Sharon/Shaz/Sharron/Shari/Sharyn/Sharan "
    "Lesley",
    "Lynn/Lynne/Linn Maureen/Maurene/Moreen/Maurine/Moe/Mora/Maura Pauline/Pauleen/Paulene Sheila/Shelagh/Shiela/"
    "Sheela/Sheilagh/Shela/Sile/Sheelagh/Sheelah Joyce/Joycie/Joy/Joice Doreen/Dorine/Dorene/Reenie Brenda Janice/"
    "Janis/Jannice June/Junie/Juno Marion",
    "Marian/Mariam Rita Shirley/Shirl/Shirlie/Shirlee Audrey/Aud/Audra/Audry Hilary/Hillary/Hilaire/Hil Wendy/Wend/"
    "Wendi/Wendie Heather/Hev Fiona/Fi/Fee/Ffion/Fionna Denise/Denice/Denyse/Deniece Beverley/Bev/Beverly",
    "Dawn Donna/Dona Michelle/Shell/Mich/Chelle/Chele Claire/Clare/Clair Lisa/Leesa/Lissa Kelly/Kelley/Kellie "
    "Kerry/Kerrie/Keri/Kerri Gemma/Jemma/Gem Laura/Lauretta/Lora/Laurel/Lowri/Lolly/Laureen Natalie/Talia/Nattie/"
    "Natalia/Nathalie/Natty",
    "Lauren/Loren/Laren Hannah/Han/Hana/Chana Jessica/Jesica/Jessika/Jessi/Jesse Sophie/Soph/Sofia/Sophy/Sofie/"
    "Saffi/Zofia/Sophi Chloe/Khloe/Cloe Lucy/Lucie/Lucia/Luce/Luci/Lucilla Olivia/Liv/Livvy/Livia/Livvie Megan/"
    "Meghan/Meagan/Meganne Bethany/Bethanie Ella",
    "Grace/Gracie/Gratia/Grazia/Gracey Amy/Amie/Ami/Aimie/Aimy Zoe/Zoey/Zowie/Zo Kirsty/Kirsti Leanne/Liane/Lianne/"
    "Leann/Leeann Melissa/Missy/Mellisa/Melitta Natasha/Tasha/Tash/Natacha Stacey/Stace/Staci/Stacie Marie Maria/"
    "Mia/Ria/Mitzi/Mariah",
    "Anita/Nita/Annita Bernadette/Detta/Bernadine/Berny/Bernadetta/Bernardette Irene/Rene/Renie/Irena/Irina/Eirene/"
    "Irenie/Ira Norma Norman/Norm/Normie/Norrie/Normand Gordon/Gord/Gordie/Gordy Trevor/Trev/Trefor Roy/Roi Nigel/"
    "Nige/Nidge Clive",
    "Barry/Baz/Barrie/Bary/Barrington Stewart/Stuart/Stu/Stew/Stewie Ross Scott/Scottie Sean/Shaun/Shawn/Shane "
    "Ryan/Rian Liam Luke/Lukas Joshua/Josh/Josue Jordan",
    "Connor/Conor Callum Oliver/Ollie/Olly/Noll/Nol/Olivier/Oliviero Harry Lewis/Lew/Ludwig/Luis/Luigi/Lewie/"
    "Ludovic/Lodewijk Dominic/Dom/Dominick/Domenico/Dominique/Domingo Duncan/Dunc/Dunkie Gareth/Gaz/Garth Glen/"
    "Glenn Glyn/Glynn",
    "Hugh/Hughie/Hugo/Huw/Huey/Hew/Ugo/Hugues/Shug Howard/Howie/Ward Julian/Jules/Jule/Julyan/Juliano/Jolyon "
    "Justin/Just/Justyn/Justinian Lionel/Lyonel Mervyn/Mervin Neville/Nev/Nevil Oscar/Ossie/Oskar/Osgar Owen/Owain/"
    "Eoin/Owin/Eoghan/Bowen Ralph/Raoul/Raul/Ralf/Rolf/Rolph",
    "Reginald/Reg/Reggie/Rex/Rinaldo Robin/Robyn Roland/Rowland/Rolly/Roly/Rollo/Rolland/Rowley Rory/Ruairi/Ruari/"
    "Rorie Rupert/Rupe/Ruprecht Russell/Russ/Rusty/Russel Sidney/Sid/Sydney/Syd Spencer/Spence Tristan/Tristram/"
    "Trystan Victor/Viktor/Vittorio",
    "Vernon/Vern/Verne Wilfred/Wilf/Wilfrid/Wilfried Aaron/Aron Adrian/Ade/Adrien/Hadrian/Adriano Angus/Gus/"
    "Aonghas/Innes Basil/Vasily Bruce Cameron/Cam Carl/Karl/Carlo/Carlos/Karel Cecil/Cec",
    "Cyril/Cy Damian/Damien/Damon Dean/Deane Desmond/Des/Desi Dudley/Dud Edgar Edwin/Edwyn Eric/Erik/Erick/Erich "
    "Evan/Iefan/Ieuan/Ifan Felix",
    "Fergus/Fergie/Feargus/Ferguson Finlay/Finley/Fin Gavin/Gav/Gawain Gerard/Gerrard/Gerhard/Gerardo/Gerrit "
    "Gilbert/Gil/Gib/Gilberto/Wilbert Giles/Gyles/Egidius Grant Gregory/Greg/Gregg/Grigor/Gregor/Gregorio/"
    "Gregorius Guy Hector/Heck",
    "Herbert/Herb/Herbie/Heriberto Herman/Hermann Horace/Horry Hubert/Hubie/Hubertus Humphrey/Humph/Humfrey/"
    "Onofrio Isaac/Ike/Isak/Izaak Ivan Jeremy/Jez Joel Kyle",
    "Lance/Launcelot/Lancelot Leon Lloyd/Loyd Louis Marcus/Marc/Marco/Markus Maurice/Morris/Mo/Moss/Maury/Morrie/"
    "Maurizio/Mauricio/Moritz/Meurig/Muiris Miles/Myles/Milo Mohammed/Mohamed/Muhammad/Mohammad/Muhammed/Mohamad/"
    "Muhamad/Mohd/Mehmet Morgan/Morg Noel/Nowell",
    "Piers Quentin/Quintin/Quinton/Quincy Randolph/Dolph/Randal Roderick/Rodrick/Roderic/Broderick/Rodrigo Royston "
    "Sebastian/Seb/Bas/Basti/Bastian/Sebastien/Sebastiano Selwyn Tyler/Ty Warren Winston",
    "Ada/Adah Alexandra/Alexa/Lexie/Alexandria/Alix/Lexi/Xandra/Alessandra/Alejandra/Aleksandra Alexis/Alexia Alma "
    "Amelia/Melia/Amalia/Emelia/Amilia/Amelie Annabel/Annabelle/Annabella/Anabel Annette/Nettie/Anette/Annetta "
    "Anthea Antonia/Tonia/Tonya/Tonie April",
    "Ashley/Ash Avril/Avrille Beryl Beth Bridget/Bridie/Biddy/Bridgit/Brigit/Brigid/Bride/Brigitte/Birgit/Brigitta/"
    "Breda/Brighid/Bridgette/Britta/Gitta/Brid Camilla/Milla/Camille/Cammie/Camila Cara/Kara Carla/Karla Carly/"
    "Carley/Karly/Karley Cecilia/Cecily/Sissy/Cicely/Cecile/Cis/Ceclia/Sisley/Cicily/Cissy/Cecelia/Cele",
    "Celia/Celie Cheryl/Cher/Sheryl/Cherryl/Cheryll Clara Claudia/Claudie/Claudette Cynthia/Cindy/Cyn/Cindie/"
    "Cinthia/Sindy Daisy/Daisie Daphne/Daph/Daff Davina/Vina/Davinia/Davida Delia Doris/Dorris",
    "Edna Erica/Erika/Rica/Rikki Ethel/Eth Eunice/Unice Eva/Evie/Evita Evelyn/Evelina/Eveline/Evelyne/Evalyn Fay/"
    "Faye/Fae Felicity/Fliss/Flick/Felicia/Liss/Lissie/Felice Flora Freda/Frieda/Frida",
    "Gail/Gale Geraldine/Geri/Geraldina/Gerri Gertrude/Gertie/Trudie/Gert/Gerda/Gatty/Truda/Gertrud Gladys/Glad/"
    "Gwladys/Gladis Glenda Gloria/Glo/Glory/Glorya Gwyneth/Gwenyth/Gwynneth Harriet/Hattie/Harrie/Hatty/Harriette/"
    "Harriot/Harriett Hazel Henrietta/Etta/Henriette/Henny",
    "Hilda/Hildy/Hylda/Hilde Ida Imogen/Immy/Imogene Ingrid/Inga/Inge Iris Ivy Janine/Jeannine/Jeanine Jeanette/"
    "Jeannette/Jenette Jemima/Mima/Jemimah/Jemmie Jodie/Jody/Jodi",
    "Juliet/Juliette/Julietta Julia/Giulia/Julita Kay/Kaye Kayleigh/Kayley/Kaylee Kimberley/Kim/Kimberly/Kimmie/"
    "Kym/Kimmy Lara/Larissa Leah/Lea/Lia Lilian/Lil/Lillian/Lilly/Lillie/Lilias/Liliana/Liliane/Lilith Lily/Lilli "
    "Lydia/Liddy/Lyddie/Lidia",
    "Mabel/Mab/Mabs/Maybelle/Mable/Maybel Madeleine/Maddie/Madeline/Maddy/Madelaine/Mady/Magdalen/Madalyn/Madelyn/"
    "Madalene Marcia/Marsha/Marcy Marilyn/Marilyne/Maz/Marylyn/Marilynn/Marylin/Merilyn/Mary-Lynn Marina Marlene/"
    "Marleen/Marlena/Malene Maud Mavis May/Maye Maxine/Maxie",
    "Mercy/Merry Mildred/Midge/Mil Miranda/Randa/Mirry Miriam/Mim/Miryam/Mirjam Moira/Moyra Molly/Mollie Monica/"
    "Mon/Monika/Monique Muriel/Mu/Murial/Merial Myra Nadine/Nadene",
    "Nancy/Nance/Nancie Naomi/Nay/Noemi Nina Noreen/Norene/Norine Olive/Nollie/Livy Paula/Paulina/Paola/Paulette/"
    "Pola Pearl/Perle/Pearla Philippa/Pippa/Pippy/Phillipa/Philipa/Pippie/Flip Phoebe/Phebe/Pheobe Phyllis/Phyl/"
    "Phillis/Phyllida/Phylis/Lis",
    "Poppy Priscilla/Pris/Cilla/Prissy/Scilla/Percilla Ramona Rhoda Rosalind/Roz/Rosalyn/Rosaline/Rosalin/Rosalynd/"
    "Roslyn/Roslin/Rosalynne/Rosa Rosamund/Rosamond Rose/Rosita Ruby/Rubie/Rubina Ruth/Ruthie/Ruthy/Rute Selina/"
    "Salina",
    "Sheena/Sheenagh/Sine/Shena Shelley/Shellie Sonia/Sonya/Sophia/Sonja Stella Sylvia/Syl/Silvia/Sylvie/Silvie/"
    "Sylv Tamara/Tamar/Mara Tara Thelma/Thel Tiffany/Tiff/Theophania/Tiffanie Trudy/Trudi",
    "Ursula/Sulie/Ursie/Urse Vanessa/Van/Vanesa Vera/Verena Vivien/Vivienne/Vivian/Vivyan/Viviane/Vivie/Viviana/"
    "Bibiana/Vyvyan/Vyvien Yvette/Ivette/Vettie",
    "Aaliyah/Aliya/Alia/Aleah Abdul/Abdool Abdullah/Abdulla Abel/Abe Abraham/Bram/Ibrahim/Avraham/Avram Adela/"
    "Adele/Adelle/Dell/Adella/Adel Adelaide/Addie/Adelheid/Laidie Adeline/Adelina/Aline Adriana/Adrienne/Adrianne "
    "Agatha/Agathe Ahmed/Ahmad/Achmed Aidan/Aiden/Edan/Aodhan Aideen/Etain Ailbhe/Alva Aisha/Ayesha/Aysha/Aishah/"
    "Asha Aisling/Ashling/Aislinn Alana/Lana/Alanna/Alannah/Allana Alasdair/Alistair/Alastair/Alaster/Allister "
    "Alban/Albany Alberta/Berta Alfonso/Alphonse/Alonzo/Fonzie Algernon/Algie/Algy Alicia/Lisha/Alisha/Alycia "
    "Alina/Alena Alvin/Elvin/Alwyn/Alwin Ambrose/Emrys/Brose Amina/Aminah Amir/Ameer Anastasia/Stasia/Tasia/"
    "Anstice/Nastasia Andrea/Andi/Drea/Andie/Andrina/Andra Aneurin/Nye Angelica/Angelique Anneliese/Annalise "
    "Annmarie/Annemarie/Anna-Maria/Annamarie Ansel/Anselm Antoinette/Antonietta Aoife/Eefa/Ifa Arabella/Ara/Arabel "
    "Ariana/Arianna/Ariane/Arianne Arlene/Arline/Arleen Armand/Armando Arnold/Arn/Arnie/Arno/Arnaldo Ashleigh/"
    "Ashlee/Ashlea August/Augustus/Augustine/Austin/Austen/Augie Augusta/Gussie/Gusta/Augustina Aurora/Aurore "
    "Aveline/Avelina",
    "Bartholomew/Bart/Barty/Bat/Tolly/Bartlett Belinda/Bindy Benedict/Bennet/Bennie/Benedick/Benito/Benet Berenice/"
    "Bernice/Bunny/Nicy/Berniece Bertha/Berthe Bianca/Blanca Blanche/Blanch Bonnie/Bonita Bradley/Brad Brendan/"
    "Bren/Brendon/Brandan Brett/Bret Brianna/Breanna/Bree/Briana Britney/Brittany/Britt Bronwen/Bron/Bronwyn "
    "Bryony/Bry/Briony",
    "Caitlin/Kaitlyn/Cait/Caitlyn/Kaitlin/Catelyn Caleb/Cal/Kaleb Candice/Candace/Kandace/Candis Candida/Candy/"
    "Candie Caoimhe/Keeva/Kweeva Carina/Karina Carlton/Carleton Carmel/Carmela/Carmella Carmen/Carmine/Carmencita "
    "Carys/Cerys Casimir/Kazimierz Caspar/Casper/Jasper/Kasper/Gaspard Cassandra/Cass/Cassie/Kassandra Cathal/"
    "Cahal Catriona/Trina/Triona/Caitriona Cedric/Ced Celeste/Celestine Celine/Selena/Celina Chantal/Chantelle/"
    "Shantelle Charity/Cherry/Chattie Charlene/Sharlene/Charline/Charleen Charmaine/Sharmaine/Charmian Chelsea/"
    "Chelsey/Chels Cherie/Cheri/Sherrie Chester/Chet Christabel/Christobel Christian/Christiaan/Kristian Ciara/"
    "Keera Ciaran/Kieran/Kieron/Ciaron Clarence/Clarrie Clarice/Claris Clarissa/Klarissa Claude/Claud/Claudius/"
    "Claudio Clayton/Clay Clement/Clem/Clemens Clementine/Clemmie/Clementina/Clemency Cleo/Cleopatra Cliff/"
    "Clifford Clint/Clinton Cliona/Cliodhna Colette/Collette/Coletta Colleen/Coleen Colm/Colum/Columba Conal/"
    "Connell Concepcion/Conchita/Concha Conrad/Conn/Konrad Constantine/Konstantin Cora/Corrie/Corrine/Corinna/"
    "Koren/Corina Coral/Coralie Cordelia/Cordy Corinne/Corin Cormac/Cormack Cornelia/Nelia Cornelius/Corny/Cornel/"
    "Neelie/Cor/Kees Costas/Kostas Courtney/Courtenay/Kourtney Cressida/Cress Crystal/Krystal/Kristal/Chrystal "
    "Cuthbert/Cuddy Cyrus/Si",
    "Daffyd/Dafydd/Taffy Dana/Dayna Daniella/Dani/Danielle/Danni/Daniela/Dannii Darcy/Darcey Dario/Darius Darryl/"
    "Daryl/Darrell Deanna/Deanne/Deana Declan/Dec Deirbhile/Dervla/Dearbhla Deirdre/Deidre/Deirdra Delilah/Lila "
    "Delphine/Delphina Demetrius/Dimitri/Dmitri/Dimitrios Denis/Dennis/Den/Denny/Dennys/Dionysius Denzil/Denzel "
    "Dermot/Diarmuid/Diarmaid/Dermott Dexter/Dex Dillon/Dylan Dilys/Dil Dipak/Deepak Dolores/Lola/Lolita/Delores "
    "Dora/Dorrie/Dory/Dorita Dougal/Dugald Drusilla/Dru Dulcie/Dulce Dwayne/Duane/Dwain",
    "Eamon/Eamonn Earl/Earle/Errol Ebenezer/Eben/Eb Edwina/Edina Eilidh/Ailie Eimear/Emer/Eimer Eithne/Ethna/Enya/"
    "Etna Elena/Yelena Eli/Ely Elias/Ellis Elijah/Lije/Eliot Elliot/Elliott Eloise/Elouise Elspeth/Elspie/Eppie/"
    "Elspet Elvira/Elvy Emanuel/Manny/Immanuel/Emmanuel/Manoel Emil/Emile/Emilio Enoch/Noch Esme/Esmee/Esmie "
    "Estelle/Estella Euan/Ewan/Ewen/Euen Eugenia/Eugenie Euphemia/Phemie/Femie Eustace/Stacy Evangeline/Vangie "
    "Ezekiel/Zeke",
    "Fabian/Fabio/Fabien Faisal/Faysal/Feisal Farida/Fareeda Farooq/Faruk Fatima/Fatimah/Fatema Fearghal/Fergal "
    "Fenella/Nella/Fionnuala/Nuala/Finella Ferdinand/Ferdie/Ferdy/Fernando/Fernand/Hernando Finn/Finbar/Fionn "
    "Fleur/Flower Francesca/Chessie/Cesca/Franca/Francheska Fraser/Frazer Frederica/Fritzi Freya/Freyja",
    "Gabriel/Gabe/Gab/Gabby Gabrielle/Gaby/Gabriella/Gabi/Gabriele/Brielle Gaynor/Gay/Gaenor Geeta/Gita Genevieve/"
    "Gen/Viv/Geneva Gervase/Jarvis/Gervais Giannis/Ioannis Giovanni/Gianni/Gian/Vanni Gisela/Giselle/Gisele Glenys/"
    "Glenis/Glennis/Glenice Glynis/Glynnis Golda/Goldie Goran/Goeran Graeme/Graham/Gra/Grahame Grainne/Grania/"
    "Granya Greta/Grete/Gretta Griffith/Griff/Gruffydd/Griffin Griselda/Zelda/Grizel/Grissel/Grizzel Guadalupe/"
    "Lupe Gunther/Gunter/Guenther Gwyn/Gwynfor",
    "Hans/Hannes Haroon/Harun Harvey/Harve/Herve Hassan/Hasan Haydn/Hayden/Haydon Hayley/Haley/Hailey/Haylie/"
    "Hayleigh Hedda/Hedwig Heidi/Heide Helmut/Hellmut Hepzibah/Hepsie Hermione/Herm Hildegard/Hildegarde Hiram/Hi "
    "Hollie/Holly Honor/Honora/Honoria/Honour/Honey Hortense/Hortensia Howell/Hywel/Hoel Hussein/Hussain/Hussien",
    "Iestyn/Iwan Ignacio/Nacho Ignatius/Iggy/Inigo/Nace Ijaz/Ejaz Irma/Erma Irvin/Irwin/Irving/Irvine/Irv Isadora/"
    "Isidora Isla/Ayla Ismail/Ishmael Isolde/Isolda Ivo/Ivor/Yves",
    "Jacinta/Jacintha Jacob/Jake/Jakob/Cob/Yakub/Yaqub/Jacobus Jade/Jayde Jaden/Jayden Jakub/Kuba Jamie-Lee/"
    "Jamie-Leigh Jan/Jann Janelle/Jeanelle Jared/Jarod/Jarrod Jaroslav/Jaroslaw Jasmin/Jasmine/Yasmin/Jaz/Jazmin/"
    "Jessamine/Jasmyn/Yasmine/Jessamy Javed/Javid Javier/Xavier Jed/Jedediah Jeremiah/Jeremias Jerome/Hieronymus "
    "Joachim/Joaquin/Jochen Jocelyn/Joss/Jocelin/Jocelyne/Joscelin/Josslyn/Joycelyn Jonah/Jonas Jude/Judd/Judah "
    "Juliana/Liana/Julianna/Julianne/Juliane Julius/Julio/Giulio Jurgen/Juergen Justine/Justina/Jussie",
    "Karim/Kareem Keeley/Keely Keira/Kiera/Kira Kelvin/Kel/Kelv Kezia/Keziah/Kizzy Khadija/Khadijah Khalid/Khaled "
    "Kirsten/Kirstin/Kirstine/Kersten Kishore/Kishor Knut/Canute Kurt/Curt/Curtis Kylie/Kyleigh",
    "Lachlan/Lachie/Lochlan/Laughlan Lakshmi/Laxmi Lavinia/Lavina/Viney Leila/Layla/Lela/Leyla Leonie/Leonee "
    "Leopold/Poldi Leticia/Letty/Lettice/Tisha/Lettie Lincoln/Linc Lindsey/Linsey/Lynsey/Lindsy/Linz/Lyndsey/Linzi/"
    "Lyndsay Linette/Lynette/Linnet/Lynnette Llewellyn/Llew Loretta/Lorette Lorna/Lorn Lucas/Luc Lucian/Lucien/"
    "Luciano Lucille/Lucile/Cille/Lu Lucinda/Cinda/Lucinde Lyndon/Lynden",
    "Madison/Maddison Maeve/Mave/Meave/Maev Magdalena/Magda/Magdalene/Maddalena/Madlen/Malena Mahmood/Mahmud/"
    "Mehmood Maia/Maya/Mya Maisie/Maisey/Mazie Malachi/Malachy Manuel/Manolo Marcel/Marcello/Marcellus Marcella/"
    "Marcelle/Marcelline/Marcie Margot/Margaux Marianne/Marianna/Mary-Ann/Maryanne Marietta/Mariette Mario/Marius "
    "Marisa/Marissa/Maryse Marmaduke/Duke Marshall/Marsh Martina/Martine Marvin/Marv/Merv Maryam/Maryum Mathias/"
    "Matthias Maximilian/Max/Massimo/Maxim Meera/Mira Mehetabel/Hitty/Mehitabel Meirion/Merion Melinda/Mindy/"
    "Malinda Melody/Melodie Melvin/Melvyn Meryl/Merrill/Merryl Micah/Mica Michaela/Mikaela/Kayla/Micki/Mikki/"
    "Makayla Millicent/Melicent/Melisande/Milicent Milton/Milt Mirabel/Mirabelle Miroslav/Miroslaw Mona/Monna "
    "Monty/Montague/Montgomery/Monte Mortimer/Mort/Morty/Morton Morwenna/Wenna Moses/Mose/Moshe/Moyshe Murdo/"
    "Murdoch Murray/Murry Myfanwy/Myf/Myfi/Vanny Myrna/Merna/Morna/Muirne Myrtle/Myrtilla",
    "Nadia/Nadya Nadim/Nadeem Nasreen/Nasrin Navin/Naveen Nelson/Nels Newton/Newt Niamh/Neve/Neave/Neeve Nicole/"
    "Nichole Noelle/Nola Nyree/Ngaire",
    "Octavia/Tavy Odhran/Oran Oisin/Osheen Olaf/Olav/Ole Olga/Olya Olwen/Olwyn Omar/Umar Ophelia/Phelia Orla/"
    "Orlagh Osman/Usman/Othman Oswald/Oz/Ozzie/Os/Waldo",
    "Pandora/Pan Parvez/Pervez/Perwez Pascal/Pascoe/Pasquale Percival/Percy/Perce/Perceval Peregrine/Perry Petra/"
    "Pet/Pietra Petronella/Parnell/Pernel Philomena/Mena/Phillie/Filomena Phineas/Phinehas Pooja/Puja Pravin/"
    "Praveen Primrose/Prim Priti/Preeti Prudence/Pru/Prue/Prudie",
    "Radek/Radoslaw Rafael/Raphael/Raf/Rafe/Raffaele Raj/Rajiv Randall/Randy/Rand/Randle Rashid/Rasheed Ravi/"
    "Ravinder/Ravindra Reece/Rhys/Rees/Rhy/Reese Regina/Rena Remy/Remi Renee/Rennie Reuben/Rube/Ruben/Rubin/Reuven "
    "Reynold/Reynolds Rhian/Rhianne Rhiannon/Rhianon/Riannon/Rhianna Rhona/Rona Rhonda/Ronda Robina/Bina/Robena "
    "Rocco/Rocky Roisin/Rosheen Rosalie/Rosalia Rosanna/Roseanne/Rosanne/Roseanna/Roxanna Rowena/Wena/Rowina "
    "Roxana/Roxy/Rox/Roxanne/Roxane/Roxie Ruaridh/Ruairidh Rudolph/Rudi/Rudy/Rodolfo/Rudolf Rufus/Ruf",
    "Sabina/Sabine Sabrina/Brina Sadhbh/Sive Sadiq/Saddiq Saeed/Said/Sayed/Syed Saffron/Saffie Salim/Saleem Salome/"
    "Salomi Salvatore/Salvador Samina/Sameena Samir/Sameer Samson/Sampson Sanjiv/Sanjeev Saoirse/Sersha/Seersha "
    "Savannah/Savanna/Sav Scarlett/Scarlet Séamus/Seumus Selma/Anselma Seraphina/Serafina/Sera Serena/Serina Serge/"
    "Sergio/Sergei Seumas/Shamus Shakeel/Shakil Shamim/Shameem Shannon/Shan Sherry/Sherri Shireen/Shirin Shona/"
    "Shonagh Sidonie/Sidony Sienna/Siena Silvester/Sylvester/Sly/Vester Simone/Simona Sinead/Shinade Siobhan/"
    "Shivaun/Shevaun/Chevonne Sohail/Suhail Solomon/Sol/Solly/Saul/Suleiman/Zal/Salomon Soren/Soeren Spiros/Spyros "
    "Stanislas/Stanislaus/Stanislaw Sterling/Stirling Sybil/Sib/Sibyl/Sibby/Sybilla/Sibylla/Cybil/Sibilla/Sybella",
    "Tabitha/Tabby/Tab Tadhg/Teague/Tiege Tallulah/Tally Tamsin/Tammie/Tamzin/Tamasine/Tamsyn Tania/Tanya/Tanja "
    "Tarik/Tariq/Tarek Tasmin/Tazmin Tatiana/Tatyana/Tatjana Tegan/Teagan Thaddeus/Thad/Tad Theobald/Tybalt "
    "Theodora/Teodora/Feodora Theodosia/Dosia Thirza/Tirzah Thomasina/Thomasine Thorsten/Torsten Tobias/Toby/Tobe/"
    "Tobin Torbjorn/Thorbjorn Tryphena/Phena",
    "Ulrich/Ulric/Uli Ulysses/Lys Uta/Ute",
    "Valentine/Valentin/Valentino Vasilis/Vassilis Vaughan/Vaughn Violet/Vi/Viola/Violetta/Violette/Vye Vladimir/"
    "Vlad/Waldemar",
    "Wallace/Wallis Wanda/Vanda Warner/Werner Waseem/Wasim Wenonah/Nona/Winona Wesley/Wes Wolfgang/Wolf Woodrow/"
    "Woody Wynne/Wyn",
    "Yolanda/Yolande/Iolanthe/Jolanda/Yoli Younis/Yunus Yusuf/Yousuf/Youssef/Yousef",
    "Zaheer/Zahir Zain/Zayn Zainab/Zeynep Zebedee/Zeb Zena/Zeena/Xena/Xenia Zephaniah/Zeph",
    "Aage Abena Absalom Agnieszka Ailsa Aimee Aine Ainsley Ajay Ajit Akash Akbar Akua Aldo Aldous Aled Aleksandar "
    "Alfreda Althea Alvaro Ama Amabel Aman Amber Amit Amita Amos Amrit Amrita Anand Anatole Andres Andrzej Aneta "
    "Angeles Angelina Angelo Angharad Anil Anila Anish Anjali Annelies Anne-Louise Annika Anouk Anoushka Antonella "
    "Anupama Anusha Anwen Araceli Archana Arjun Arne Arran Arsalan Arun Arwen Asbjorn Asher Ashok Ashwin Astrid "
    "Asuncion Athena Aubrey Aubrie Ava Avani Avis Azra",
    "Balbir Baldev Balwant Barclay Bartosz Beata Beau Bengt Benita Bethan Beti Beulah Bevan Bharat Bhavesh Bhavna "
    "Bhupinder Birgitta Bjorn Blair Blaise Blathnaid Blodwen Blythe Bogdan Bohdan Boris Boyd Bozena Bramwell "
    "Brandon Branwen Brent Bronagh Bruna Bruno Bryn Brynmor Byron",
    "Calliope Calvin Campbell Careen Carwen Casey Ceinwen Ceri Cesare Chad Chandni Chandra Chen Cheryl-Ann Chetan "
    "Chhaya Chiara Chidi Chioma Christiana Christos Chrysoula Cinzia Clark Claudine Clifton Clodagh Clyde Consuelo "
    "Corey Crispin Cristian",
    "Dagmar Daksha Dale Damini Danuta Daria Dariusz Darshan Davinder Dawid Deepa Della Delroy Delyth Demi Despina "
    "Detlef Dev Dewi Didier Diego Dieter Digby Dilip Dimitris Dinesh Dino Divya Diya Donatella Donnchadh Donovan "
    "Dorcas Dorinda Dorota Drummond Dusan Dwight Dwynwen Dymphna",
    "Ebony Edison Effie Egbert Eglantine Eifion Eira Eirlys Eirwen Eldred Eleri Elfed Elfreda Eliana Elin "
    "Elizabeth-Anne Elke Ellena Elmer Elodie Elsa Elton Eluned Elvis Elwyn Emanuela Emeka Emlyn Emmeline Ena "
    "Encarnacion Enfys Enid Enrica Enzo Ephraim Erin Esmeralda Esmond Esperanza Ethan Ettore Eulalia Eurgain Eurig "
    "Eurwen Evangelia Eve Everard Everett Ewa Ezra",
    "Fabrice Faith Farah Farhan Farzana Faustina Fausto Fearghus Federica Femi Fern Fidelia Fidelma Finola Fintan "
    "Fionnghal Fiorella Fitzroy Flavia Fletcher Florian Floyd Folake Francine Franco Franklin Fronica",
    "Ganesh Garfield Garmon Garrick Gaston Gaurav Georgia Geraint Germaine Gerwyn Gethin Ghislaine Gideon Gilles "
    "Ginette Gino Giorgos Giovanna Girish Giuliana Giuseppina Gobnait Gonzalo Gopal Goronwy Graciela Granville "
    "Graziella Grazyna Greville Grzegorz Gudrun Guido Guinevere Gurcharan Gurdeep Gurmeet Gurpreet Gwawr Gwenllian "
    "Gwilym Gwion",
    "Habiba Haf Hakan Halima Hamish Hamza Hansa Hardeep Harish Harjinder Harjit Harley Harpreet Harrison Heath "
    "Hedley Hefin Heike Heinz Helena Helga Hema Hermia Hester Heulwen Hina Hiroshi Hitesh Homer Hope Horatio Horst "
    "Hyacinth",
    "Ide Idris Ifor Iftikhar Igor Ila Ileana Illtyd Ilona Ilyas Imelda Imran Inderjit India Indira Indu Ingeborg "
    "Ingram Inmaculada Iolo Iona Iorwerth Iqbal Irfan Isaiah Isambard Iseabal Ishani Israel Ita Ivana Iwona",
    "Jacek Jackson Jadwiga Jagdish Jagjit Jaime Jamal Jamila Jana Janette Janusz Jaspal Jasvinder Jaswant "
    "Jaswinder Javaid Jaya Jayant Jayesh Jayshree Jean-Luc Jean-Paul Jean-Pierre Jefferson Jenkin Jenna Jeraldine "
    "Jermaine Jerusha Jesus Jethro Jitendra Jitka Joelle Jolanta Jorgen Jose Josiah Juan Jun Junior Justyna Jyoti",
    "Kacper Kajal Kalpana Kamal Kamala Kamini Kamlesh Kanchan Kanta Kapil Karl-Heinz Kartik Kashif Kashmir "
    "Kashmira Katelyn Katinka Kaushalya Kavita Keenan Keiko Keir Keiran Kendra Kendrick Kenelm Kenji Kerr Kerstin "
    "Keturah Khurram Kinga Kiran Kirk Kirsteen Kishan Kjell Kofi Komal Krishna Krzysztof Kulwant Kulwinder Kumar "
    "Kusum Kwame Kwasi Kyran Kyriakos",
    "Lalit Lambert Laraine Lata Latifa Latisha Laverne Lawson Leanda Lech Leela Leif Leighton Lennox Leo Leona "
    "Leonora Leroy Lester Leszek Letitia Letizia Levi Li Lindsay Linus Livio Lleucu Llinos Lochlann Logan Loic "
    "Lorcan Loredana Lourdes Lubomir Luca Lucienne Lucius Lucretia Ludmila Lukasz Luna Luned Luther Luz Lydie Lyle",
    "Maciej Macsen Madhu Madoc Magnus Mahesh Mairead Mairin Mairwen Mala Mali Malik Malvina Mandeep Manfred Manish "
    "Manisha Manjit Manju Manoj Manon Mansel Manuela Maqbool Mariel Marigold Marisol Marit Mariusz Marla Marlon "
    "Marsaili Mary-Jane Mary-Lou Mary-Rose Marzena Mason Mats Maxwell Meabh Meena Mehul Mei Meinir Melville Menna "
    "Mercedes Meredith Mererid Merete Merle Merlin Michalis Michiko Milan Milena Minal Minerva Ming Mireille "
    "Mirella Misbah Mitchell Mohan Mohinder Montserrat Morag Mordecai Morley Morven Mostyn Muir Muireann Mukesh "
    "Mumtaz Mungo Munir Mushtaq Mustafa Myron",
    "Nadege Nadir Nafisa Nalini Nanette Napoleon Narelle Narendra Naresh Narinder Naseem Naveed Nazia Neelam Neena "
    "Neeraj Neeta Nerys Nesta Ngozi Nia Niels Nieves Nikhil Nikita Nilesh Nimisha Ninian Nirmal Nirmala Nisha "
    "Nitin Nneka Noah Nolan Non Norris Norton Nova Nuria",
    "Obinna Octavius Odette Odile Oighrig Oksana Olena Olu Oonagh Opal Oriel Orlaith Orlando Orna Ornella Orson "
    "Orville Osbert Osborne Osian Oswin Otis Otto",
    "Padma Padmini Paige Palmer Paloma Panayiotis Pankaj Panos Pansy Paramjit Paraskevi Parminder Parvati Parveen "
    "Pascale Patience Paz Perpetua Persis Petula Petunia Phileas Phoenix Pia Pilar Portia Prabha Pradeep Prakash "
    "Prashant Pratibha Precious Prem Preston Prisca Priya Prunella Purnima Pushpa",
    "Qasim",
    "Radha Raffaella Rafiq Rahul Rainer Raisa Rajesh Rajinder Rajni Rakesh Raman Ramesh Ramsay Ranbir Randi "
    "Ranjana Ranjit Raonaid Rashmi Raza Redvers Reena Regis Reinhard Rekha Remedios Remington Renata Renato Renu "
    "Rhea Rheinallt Rhodri Rhydian Riana Riona Riordan Ritu Rizwan Rocio Rohan Rohini Rohit Romaine Roman Romano "
    "Romeo Romy Rosalba Rosaleen Rosario Roscoe Roseann Roseline Rosetta Roshni Rosina Rossella Rowan Rukhsana "
    "Ruksana Rupal Rutger",
    "Sachin Sadia Safiya Saima Saira Sajid Salma Salman Sana Sandeep Sandhya Sandrine Sandro Sangeeta Sanjay "
    "Santiago Sapna Sapphire Sarfraz Saroj Saskia Satish Satnam Seema Segun Seonag Septimus Seth Severine Seymour "
    "Shabana Shafiq Shahid Shahnaz Shahzad Shaista Shakira Shanice Shankar Shanta Sharad Sharda Sharif Shaw Shazia "
    "Sheba Sheetal Sheldon Sheonag Sheridan Sherwin Shilpa Shoaib Shobha Shreya Sian Sidra Siegfried Siencyn "
    "Sigmund Sigrid Sigurd Silas Silke Silvana Silvio Simonetta Sinclair Sioned Siri Sita Slawomir Smita Sneha "
    "Solange Soledad Solveig Sonal Sorcha Spike Stavros Stavroula Stelios Stig Struan Subhash Sudha Sudhir Sukhbir "
    "Sukhdev Sukhwinder Sultan Suman Summer Sunil Sunita Suresh Surinder Surjit Surya Sushil Sushila Sushma Sven "
    "Svend Svetlana Swati Sylvain",
    "Tadeusz Tahir Tahira Taj Takeshi Takis Tanisha Tanveer Tarquin Tasneem Taylor Tecwyn Tegwen Teifion Tejinder "
    "Terrell Tevin Theophilus Thierry Thor Thora Thornton Thorvald Thurston Tiernan Tirion Titus Todd Tommaso "
    "Torquil Travis Trent Trevina Troy Tullio Tunde Turid Turlough Tyrone Tyson",
    "Ulla Ulrike Ultan Uma Umberto Umesh Una Unity Urban Uriah Urszula Urvashi Usha Uwe",
    "Valentina Vandana Varsha Vashti Vasiliki Veena Velma Venetia Venus Verna Verona Vesna Vicente Vida Vidya "
    "Vijay Vikas Vikram Vimal Vimala Vinod Vipul Virgil Vishal Vivek Volker",
    "Warwick Washington Wei Wendell Wieslaw Wilbur Willard Willis Willow Wilma Wilmer Wilson Windsor Witold "
    "Wojciech Wyndham Wynford",
    "Xanthe Xiu",
    "Yann Yash Yasmeen Yaw Yewande Ying Yitzhak Yogesh Yuki",
    "Zadie Zafar Zahid Zahra Zara Zbigniew Zdenek Zdenka Zebulon Zeenat Zinnia Zita Zubair Zubeda Zuleika Zygmunt",
};
// clang-format on

}  // namespace

std::span<const std::string_view> FirstNames() {
  return kRows;
}

}  // namespace tavi
